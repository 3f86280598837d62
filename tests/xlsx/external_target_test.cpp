#include "qto/hosts/embedded/xlsx/external_target.hpp"

#include <gtest/gtest.h>

#include "tests/support/local_path.hpp"

namespace qto::embedded {
namespace {

TEST(ExternalTarget, IsUnderstoodInEveryForm) {
  const struct {
    const char* target;
    const char* folder;
    const char* name;
  } rows[] = {
      {"file:///D:\\Data\\Book 2.xlsx", "D:\\Data\\", "Book 2.xlsx"},
      {"file:///D:/Data/Book%202.xlsx", "D:\\Data\\", "Book 2.xlsx"},
      {"FILE:///d:\\B.xlsx", "d:\\", "B.xlsx"},
      {"file:///home/ann/B.xlsx", "/home/ann/", "B.xlsx"},
      {"file:/home/ann/B.xlsx", "/home/ann/", "B.xlsx"},
      {"file://localhost/home/ann/B.xlsx", "/home/ann/", "B.xlsx"},
      {"file://localhost/D:/Data/B.xlsx", "D:\\Data\\", "B.xlsx"},
      {"file://server/share/sub/B.xlsx", "\\\\server\\share\\sub\\", "B.xlsx"},
      {"file:///\\\\server\\share\\B.xlsx", "\\\\server\\share\\", "B.xlsx"},
      {"\\\\server\\share\\B.xlsx", "\\\\server\\share\\", "B.xlsx"},
      {"D:\\Data\\Sub\\B.xlsx", "D:\\Data\\Sub\\", "B.xlsx"},
      {"D:/Data/Sub/B.xlsx", "D:\\Data\\Sub\\", "B.xlsx"},
      {"/home/ann/B.xlsx", "/home/ann/", "B.xlsx"},
      {"B.xlsx", "/base/", "B.xlsx"},
      {"sub/B.xlsx", "/base/sub/", "B.xlsx"},
      {"sub\\B.xlsx", "/base/sub/", "B.xlsx"},
      {"./B.xlsx", "/base/", "B.xlsx"},
      {"../B.xlsx", "/", "B.xlsx"},
      {"..\\other\\B.xlsx", "/other/", "B.xlsx"},
      {"My%20Book.xlsx", "/base/", "My Book.xlsx"},
      {"100%.xlsx", "/base/", "100%.xlsx"},
      {"\xC3\x84rzte.xlsx", "/base/", "\xC3\x84rzte.xlsx"},
      {"https://host.example/a/b/B.xlsx", "https://host.example/a/b/", "B.xlsx"},
      {"http://host.example/B%20C.xlsx", "http://host.example/", "B%20C.xlsx"},
      {"", "/base/", ""},
  };
  for (const auto& row : rows) {
    const FileLocation at = locate_target(row.target, "/base");
    EXPECT_EQ(at.folder, test::local_folder(row.target, row.folder)) << row.target;
    EXPECT_EQ(at.name, row.name) << row.target;
  }
  EXPECT_EQ(locate_target("sub/B.xlsx", "").folder, "sub/");  // a book that was never saved
}

}  // namespace
}  // namespace qto::embedded
