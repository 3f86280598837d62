#include <gtest/gtest.h>

#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {
namespace {

class Names : public testing::Test {
 protected:
  std::string seen(std::string_view name, const Sheet* from) const {
    const DefinedName* found = book_.names.resolve(name, from);
    if (!found) return "none";
    return found->name + (found->sheet ? "@" + found->sheet->name : "");
  }
  Book book_;
  Sheet& one_ = book_.add_sheet("One");
  Sheet& two_ = book_.add_sheet("Two");
};

TEST_F(Names, OfTheOwnSheetComeBeforeThoseOfTheBook) {
  EXPECT_TRUE(book_.names.add({"Rate", nullptr, false, nullptr}));
  EXPECT_TRUE(book_.names.add({"RATE", &one_, false, nullptr}));
  EXPECT_FALSE(book_.names.add({"rate", &one_, false, nullptr}));
  EXPECT_EQ(seen("rAtE", &one_), "RATE@One");
  EXPECT_EQ(seen("rAtE", &two_), "Rate");
  EXPECT_EQ(book_.names.find("Rate", &two_), nullptr);
}

TEST_F(Names, GoWithTheirSheet) {
  book_.names.add({"A_", nullptr, false, nullptr});
  book_.names.add({"B_", &one_, false, nullptr});
  book_.names.add({"C_", &two_, false, nullptr});
  book_.names.remove_sheet(&one_);
  EXPECT_EQ(seen("b_", &one_), "none");
  EXPECT_EQ(seen("c_", &two_), "C_@Two");
  EXPECT_EQ(book_.names.index_of(*book_.names.find("c_", &two_)), 2);
}

TEST_F(Names, ThatAreSetAgainMoveToTheEnd) {
  book_.names.add({"A_", nullptr, false, nullptr});
  book_.names.add({"B_", nullptr, false, nullptr});
  book_.names.set({"a_", nullptr, true, nullptr});
  EXPECT_EQ(book_.names.all().size(), 2u);
  EXPECT_EQ(book_.names.index_of(*book_.names.find("A_", nullptr)), 2);
  EXPECT_TRUE(book_.names.find("A_", nullptr)->hidden);
  EXPECT_TRUE(book_.names.remove("A_", nullptr));
  EXPECT_FALSE(book_.names.remove("A_", nullptr));
}

TEST(Styles, ShareFormatsAndAreFoundAgain) {
  StyleTable styles;
  const StyleId hidden = styles.add("0.00", false, true);
  const StyleId plain = styles.add("0.00");
  EXPECT_EQ(styles.at(hidden).format, styles.at(plain).format);
  EXPECT_EQ(styles.with_format(plain, "0.00"), plain);
  const StyleId other = styles.with_format(hidden, "0%");
  EXPECT_EQ(styles.at(other).format_code, "0%");
  EXPECT_FALSE(styles.at(other).locked);
  EXPECT_TRUE(styles.at(other).formula_hidden);
  EXPECT_EQ(styles.with_format(hidden, "0%"), other);
}

TEST(Styles, NobodyKnowsAreTheDefault) {
  const StyleTable styles;
  EXPECT_EQ(styles.at(70'000).format_code, "General");
  EXPECT_TRUE(styles.at(70'000).locked);
}

}  // namespace
}  // namespace qto::embedded
