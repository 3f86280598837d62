#include "qto/hosts/embedded/xlsx/limits.hpp"

#include <gtest/gtest.h>

#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using embedded::Limits;
using embedded::OpenFailure;
using embedded::OpenFailureKind;

/// Cells, texts, a shared string, an array formula and a formula of 20 characters.
BookFile full_book() {
  return BookFile()
      .strings("<si><t>one</t></si><si><t>two</t></si>")
      .cells(
          "<row r='1'><c r='A1' t='s'><v>1</v></c><c r='B1'><f>SUM(C1:C9)+SUM(D1:D9)</f></c>"
          "<c r='E1'><f t='array' ref='E1:E9'>C1:C9</f></c></row>");
}

struct Case {
  std::string_view name;
  std::uint64_t enough;
};

class LimitOf : public testing::TestWithParam<Case> {};

// One more than enough opens the book, one less is refused as too large and names the limit.
TEST_P(LimitOf, IsKept) {
  const auto [name, enough] = GetParam();
  const auto limit = std::ranges::find(embedded::limit_names(), name, &embedded::LimitName::name);
  ASSERT_NE(limit, embedded::limit_names().end());
  const BookFile file = full_book();
  embedded::OpenOptions options;
  options.limits.*limit->value = enough;
  EXPECT_NE(file.open(options), nullptr);
  options.limits.*limit->value = enough - 1;
  try {
    file.open(options);
    FAIL() << "was read";
  } catch (const OpenFailure& failure) {
    EXPECT_EQ(failure.kind, OpenFailureKind::too_large);
    EXPECT_NE(std::string(failure.what()).find(std::string(name) + "="), std::string::npos)
        << failure.what();
  }
}

INSTANTIATE_TEST_SUITE_P(Reading, LimitOf,
                         testing::Values(Case{"sheets", 1}, Case{"strings", 2},
                                         Case{"formula-length", 21}, Case{"cells", 11},
                                         Case{"array-cells", 9}, Case{"xml-depth", 5}),
                         [](const auto& info) {
                           std::string name(info.param.name);
                           std::ranges::replace(name, '-', '_');
                           return name;
                         });

TEST(Limits, OfTextsCutThem) {
  embedded::OpenOptions options;
  options.limits.text_length = 2;
  const auto book = full_book().open(options);
  EXPECT_EQ(book->texts.view(book->sheets()[0]->cells.find({1, 1})->text()), "tw");
}

TEST(Limits, OfAttributesRefuseTheElement) {
  std::string attributes;
  for (int i = 0; i < 10; ++i) attributes += " a" + std::to_string(i) + "='1'";
  embedded::OpenOptions options;
  options.limits.xml_attributes = 10;
  try {
    BookFile().cells("<row r='1'><c r='A1'" + attributes + "><v>1</v></c></row>").open(options);
    FAIL() << "was read";
  } catch (const OpenFailure& failure) {
    EXPECT_EQ(failure.kind, OpenFailureKind::too_large);
    EXPECT_EQ(failure.part, "xl/sheet1.xml");
  }
}

}  // namespace
}  // namespace qto::test
