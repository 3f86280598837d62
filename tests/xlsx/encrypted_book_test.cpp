// Encrypted workbooks as files: opened, refused, cut off, changed.

#include <gmock/gmock.h>

#include <random>

#include "tests/support/encrypting.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using embedded::OpenFailure;
using embedded::OpenFailureKind;

std::string book_bytes() {
  BookFile book;
  book.cells("<row r='1'><c r='A1'><v>42</v></c><c r='B1'><f>A1*2</f><v>84</v></c></row>");
  return book.bytes();
}

/// What A1 shows, or the kind of the failure.
std::string opened(const std::string& path, const std::string& password) {
  embedded::OpenOptions options;
  options.password = password;
  try {
    return shown(*embedded::open_workbook(path, options), "Sheet1", "A1");
  } catch (const OpenFailure& failure) {
    EXPECT_THAT(failure.what(), testing::HasSubstr(path));
    EXPECT_THAT(failure.what(), testing::Not(testing::HasSubstr("secret")));
    return "failure " + std::to_string(static_cast<int>(failure.kind));
  }
}

std::string failure(OpenFailureKind kind) {
  return "failure " + std::to_string(static_cast<int>(kind));
}

TEST(EncryptedBook, OpensWithItsPasswordOnly) {
  const std::string content = book_bytes();
  const EncryptedStreams kinds[] = {
      agile_encrypted(content, "secret"),
      standard_encrypted(content, "secret"),
      standard_encrypted(content, "secret", {true, 128}),
  };
  for (const EncryptedStreams& streams : kinds) {
    const TemporaryFile file("locked.xlsx", streams.file());
    EXPECT_EQ(opened(file.path(), "secret"), "42");
    EXPECT_EQ(opened(file.path(), "secret "), failure(OpenFailureKind::wrong_password));
    EXPECT_EQ(opened(file.path(), ""), failure(OpenFailureKind::encrypted));
  }
  const TemporaryFile plain("plain.xlsx", content);
  EXPECT_EQ(opened(plain.path(), "secret"), "42");  // needs none
}

TEST(EncryptedBook, CutOffAnywhereIsRefused) {
  for (const auto& streams : {agile_encrypted(book_bytes(), "secret"),
                              standard_encrypted(book_bytes(), "secret", {true, 128})}) {
    const std::string whole = streams.file();
    for (std::size_t size = 0; size + 512 < whole.size(); size += 61) {
      const TemporaryFile file("cut.xlsx", whole.substr(0, size));
      const std::string outcome = opened(file.path(), "secret");
      EXPECT_EQ(outcome,
                failure(size < 8 ? OpenFailureKind::not_a_package : OpenFailureKind::damaged))
          << size;
    }
  }
}

TEST(EncryptedBook, WithChangedBytesOpensAsItWasOrNotAtAll) {
  const std::string whole =
      agile_encrypted(book_bytes(), "secret", {"SHA256", 128, 10, true}).file();
  std::mt19937 random(11);
  for (int round = 0; round < 400; ++round) {
    std::string bytes = whole;
    bytes[random() % bytes.size()] = static_cast<char>(random());
    const TemporaryFile file("changed.xlsx", bytes);
    EXPECT_THAT(opened(file.path(), "secret"),
                testing::AnyOf("42", testing::StartsWith("failure")));
  }
}

}  // namespace
}  // namespace qto::test
