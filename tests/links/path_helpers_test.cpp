#include "qto/links/path_helpers.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace qto::Main {
namespace {

TEST(IsURL, IsToldByTheScheme) {
  for (const char* text :
       {"http://a/b", "HTTPS://a", "ftp:x", "file:///c/x", "mailto:a@b", "x-y.z+1:a"})
    EXPECT_TRUE(IsURL(text)) << text;
  for (const char* text : {"", "C:\\Data", "c:/x", "\\\\server\\share", "/home/x", "Book.xls", ":x",
                           "1ab:x", "a b:x", "data/x:y"})
    EXPECT_FALSE(IsURL(text)) << text;
}

TEST(Separators, PairAsTheyDo) {
  const struct {
    const char* text;
    bool local;
    const char* trimmed;
    const char* added;
  } rows[] = {
      {"C:\\Data", true, "C:\\Data", "C:\\Data\\"},
      {"C:\\Data\\", true, "C:\\Data\\", "C:\\Data\\"},
      {"/home/x/", true, "/home/x", "/home/x/\\"},
      {"C:/x//", true, "C:/x/", "C:/x//\\"},
      {"http://a/b/", false, "http://a/b/", "http://a/b/"},
      {"http://a/b", false, "http://a/b", "http://a/b/"},
      {"http://a\\", false, "http://a", "http://a\\/"},
      {"", true, "", "\\"},
      {"", false, "", "/"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(TrimSeparator(row.text, row.local), row.trimmed) << row.text;
    EXPECT_EQ(AddSeparator(row.text, row.local), row.added) << row.text;
  }
}

TEST(FileExists, KnowsFilesFoldersAndBackslashes) {
  const std::string folder = QTO_SOURCE_DIR;
  EXPECT_TRUE(FileExists(folder));
  EXPECT_TRUE(FileExists(folder + "/CMakeLists.txt"));
#ifndef _WIN32
  EXPECT_TRUE(FileExists(folder + "\\tests\\CMakeLists.txt"));
#endif
  EXPECT_FALSE(FileExists(folder + "/no such file"));
  EXPECT_FALSE(FileExists(""));
  EXPECT_TRUE(FileExists("http://nobody.example/Book.xlsx"));  // nothing is contacted
}

}  // namespace
}  // namespace qto::Main
