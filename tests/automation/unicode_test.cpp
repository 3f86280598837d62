#include "qto/automation/unicode.hpp"

#include <gtest/gtest.h>

#include "qto/automation/file_path.hpp"
#include "qto/automation/text.hpp"

namespace qto::text {
namespace {

TEST(Utf16, IsReadAndWritten) {
  const struct {
    std::string utf8;
    std::u16string utf16;
  } rows[] = {{"", u""},
              {"plain", u"plain"},
              {"\u00e9\u20ac", u"\u00e9\u20ac"},
              {"\U0001F600x", u"\U0001F600x"},
              {"\U0010FFFF", u"\U0010FFFF"},
              {std::string("a\0b", 3), std::u16string(u"a\0b", 3)}};
  for (const auto& row : rows) {
    EXPECT_TRUE(is_valid_utf8(row.utf8));
    EXPECT_EQ(to_utf16(row.utf8), row.utf16) << row.utf8;
    EXPECT_EQ(from_utf16(row.utf16), row.utf8);
    EXPECT_EQ(utf16_length(row.utf8), row.utf16.size()) << row.utf8;
  }
}

TEST(Utf16, ReplacesWhatIsIllFormed) {
  const struct {
    std::string utf8;
    std::u16string utf16;
  } rows[] = {{"a\xff"
               "b",
               u"a\uFFFDb"},
              {"\xc3", u"\uFFFD"},                                // cut off
              {"\xe2\x82", u"\uFFFD"},                            // one piece
              {"\xe2\x82x", u"\uFFFDx"},                          // what follows is kept
              {"\xf0\x9f\x98", u"\uFFFD"},                        //
              {"\xc0\xaf", u"\uFFFD\uFFFD"},                      // overlong
              {"\xe0\x80\x80", u"\uFFFD\uFFFD\uFFFD"},            // overlong
              {"\xed\xa0\x80", u"\uFFFD\uFFFD\uFFFD"},            // a surrogate
              {"\xf4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond Unicode
              {"\x80", u"\uFFFD"}};
  for (const auto& row : rows) {
    EXPECT_FALSE(is_valid_utf8(row.utf8));
    EXPECT_EQ(to_utf16(row.utf8), row.utf16);
  }
  EXPECT_EQ(from_utf16(std::u16string{u'a', 0xD83D}), "a\uFFFD");
  EXPECT_EQ(from_utf16(std::u16string{0xDE00, u'a'}), "\uFFFDa");
  EXPECT_EQ(from_utf16(std::u16string{0xD83D, 0xD83D, 0xDE00}), "\uFFFD\U0001F600");
}

TEST(LetterCase, ChangesBeyondAscii) {
  EXPECT_EQ(to_upper("\u00e9t\u00e9 \u0431"), "\u00c9T\u00c9 \u0411");
  EXPECT_EQ(to_lower("\u00c9T\u00c9 \u0411"), "\u00e9t\u00e9 \u0431");
  EXPECT_EQ(to_upper("Stra\u00dfe"), "STRASSE");
  EXPECT_EQ(to_upper(""), "");
}

TEST(FoldCase, TakesAllFormsOfALetterForOne) {
  EXPECT_TRUE(equal_fold("\u03a3", "\u03c2"));          // final sigma
  EXPECT_TRUE(equal_fold("\u017f", "S"));               // long s
  EXPECT_TRUE(equal_fold("\u212a", "k"));               // Kelvin
  EXPECT_TRUE(equal_fold("\U00010400", "\U00010428"));  // Deseret
  EXPECT_FALSE(equal_fold("\u0130", "i"));              // would lengthen the text
}

TEST(FilePath, KeepsNames) {
  for (const std::string name : {"book.xlsx", "\u00dcbersicht \u20ac.xlsx", "\U0001F600"})
    EXPECT_EQ(from_path(to_path(name)), name);
  EXPECT_FALSE(std::filesystem::exists(to_path("\xff\xfe")));
  const std::filesystem::path place =
      std::filesystem::temp_directory_path() / to_path("qto \u00e9\u20ac.txt");
  std::FILE* const file = open_file(from_path(place), "w");
  ASSERT_TRUE(file);
  std::fclose(file);
  EXPECT_TRUE(std::filesystem::remove(place));
}

}  // namespace
}  // namespace qto::text
