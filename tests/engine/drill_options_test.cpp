#include "qto/options/drill_options.hpp"

#include <gtest/gtest.h>

#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

std::string shown(const DrillOptions& options) {
  std::string out;
  for (const int value :
       {+options.ParseIf(), +options.ParseLookup(), +options.ParseSumif(), +options.ParseIndirect(),
        +options.ParseOffset(), +options.ParseIndex(), +options.ParseMatch()})
    out += std::to_string(value);
  for (const bool value : {options.ShowBlanks(), options.ShowZeros(), options.ShowDates()})
    out += value ? "T" : "F";
  return out;
}

TEST(DrillOptions, Presets) {
  DrillOptions options;
  EXPECT_EQ(shown(options), "0004400TTT");
  options.ShowMinimal();
  EXPECT_EQ(shown(options), "1113316FFF");
  options.ShowAll();
  EXPECT_EQ(shown(options), "0005500TTT");
  options.ShowNormal();
  EXPECT_EQ(shown(options), "0004400TTT");
}

TEST(DrillOptions, EachPropertyTakesItsOwnValues) {
  using Write = void (DrillOptions::*)(qtoDrillType);
  const struct {
    Write write;
    std::string accepted;
  } rows[] = {{&DrillOptions::put_ParseIf, "012"},     {&DrillOptions::put_ParseLookup, "012"},
              {&DrillOptions::put_ParseSumif, "012"},  {&DrillOptions::put_ParseIndirect, "345"},
              {&DrillOptions::put_ParseOffset, "345"}, {&DrillOptions::put_ParseIndex, "01"},
              {&DrillOptions::put_ParseMatch, "06"}};
  for (const auto& row : rows) {
    for (int value = -1; value <= 7; ++value) {
      DrillOptions options;
      const std::string before = shown(options);
      const bool accepted = row.accepted.find(std::to_string(value)) != std::string::npos;
      EXPECT_EQ(raised_by([&] { (options.*row.write)(qtoDrillType(value)); }),
                accepted ? 0 : -2147221500);
      if (!accepted) {
        EXPECT_EQ(shown(options), before);
      }
    }
  }
}

}  // namespace
}  // namespace qto::test
