#include "qto/model/display_format.hpp"

#include <gtest/gtest.h>

namespace qto {
namespace {

TEST(DisplayFormat, WritesValuesThatTheHostShowsNoTextFor) {
  const struct {
    Variant value;
    const char* text;
  } rows[] = {{5.0, "5.00"},
              {2.675, "2.68"},
              {1.005, "1.01"},
              {-2.5, "-2.50"},
              {1e15, "1000000000000000.00"},
              {7, "7.00"},
              {true, "-1.00"},
              {"x", "x"},
              {"12", "12.00"},
              {"", ""},
              {Date{45352}, "3/1/2024"},
              {Date{0.75}, "12/30/1899"},
              {Date{1e9}, "1000000000.00"},
              {ErrorValue::div0, "#DIV/0!"},
              {Null{}, ""},
              {{}, ""}};
  for (const auto& row : rows) EXPECT_EQ(format_value(row.value), row.text);
}

}  // namespace
}  // namespace qto
