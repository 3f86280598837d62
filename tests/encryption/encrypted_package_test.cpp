#include "qto/hosts/embedded/encryption/encrypted_package.hpp"

#include <gmock/gmock.h>

#include "tests/support/encrypting.hpp"

namespace qto::test {
namespace {

using embedded::decrypt_package;
using embedded::EncryptionFault;
using enum EncryptionFault::Kind;
using testing::HasSubstr;

std::string content(std::size_t size) {
  std::string out;
  for (std::size_t i = 0; i < size; ++i) out.push_back(static_cast<char>(i * 7 + i / 200));
  return out;
}

std::string opened(const std::string& file, std::string_view password) {
  return text_of(decrypt_package(bytes_of(file), password));
}

/// The kind of the failure; its text must not give the password away.
EncryptionFault::Kind failure(const std::string& file, const std::string& password,
                              const std::string& words = "") {
  try {
    opened(file, password);
  } catch (const EncryptionFault& fault) {
    EXPECT_THAT(fault.what(), HasSubstr(words));
    if (!password.empty()) {
      EXPECT_THAT(fault.what(), testing::Not(HasSubstr(password)));
    }
    return fault.kind;
  }
  ADD_FAILURE() << "was opened";
  return {};
}

TEST(AgileEncryption, OpensWithEveryCipherAndHash) {
  for (const int key_bits : {128, 192, 256})
    for (const char* hash : {"SHA1", "SHA256", "SHA384", "SHA512", "MD5", "SHA-512"}) {
      SCOPED_TRACE(std::string(hash) + " " + std::to_string(key_bits));
      const std::string text = content(10'001);
      const auto streams = agile_encrypted(text, "Pässwörd €😀", {hash, key_bits, 500, true});
      EXPECT_TRUE(opened(streams.file(), "Pässwörd €😀") == text);
      EXPECT_EQ(failure(streams.file(), "Passw"), wrong_password);
      EXPECT_EQ(failure(streams.file(), ""), no_password);
    }
}

TEST(AgileEncryption, OfEveryLength) {
  for (const std::size_t size : {0, 1, 15, 16, 17, 4095, 4096, 4097, 8192, 50'000}) {
    const auto streams = agile_encrypted(content(size), "x", {"SHA1", 128, 0, true});
    EXPECT_TRUE(opened(streams.file(12), "x") == content(size)) << size;
  }
}

TEST(StandardEncryption, OpensWithEveryKey) {
  for (const StandardMethod how : {StandardMethod{false, 128},
                                   {false, 192},
                                   {false, 256},
                                   {true, 40},
                                   {true, 56},
                                   {true, 128}}) {
    SCOPED_TRACE(std::to_string(how.rc4) + " " + std::to_string(how.key_bits));
    const std::string text = content(5'003);
    const auto streams = standard_encrypted(text, "tika", how);
    EXPECT_TRUE(opened(streams.file(), "tika") == text);
    EXPECT_EQ(failure(streams.file(), "Tika"), wrong_password);
    EXPECT_EQ(failure(streams.file(), ""), no_password);
  }
}

TEST(Encryption, WithTheWellKnownPasswordAsksForNone) {
  EXPECT_EQ(opened(agile_encrypted("book", "VelvetSweatshop").file(), ""), "book");
  EXPECT_EQ(opened(standard_encrypted("book", "VelvetSweatshop").file(), ""), "book");
  EXPECT_EQ(failure(agile_encrypted("book", "VelvetSweatshop").file(), "other"), wrong_password);
}

TEST(AgileEncryption, TellsChangedDataFromAWrongPassword) {
  const auto good = agile_encrypted(content(9000), "pw");
  for (const std::size_t at : {0u, 3u, 8u, 100u, 4104u, 9007u}) {
    auto changed = good;
    changed.package[at] = static_cast<char>(changed.package[at] ^ 0x10);
    EXPECT_EQ(failure(changed.file(), "pw", "integrity"), damaged) << at;
  }
  auto shorter = good;
  shorter.package.resize(shorter.package.size() - 16);
  EXPECT_EQ(failure(shorter.file(), "pw"), damaged);
  auto unchecked = agile_encrypted(content(9000), "pw", {"SHA512", 256, 10, false});
  EXPECT_TRUE(opened(unchecked.file(), "pw") == content(9000));
  put_le(unchecked.package, 0, 1'000'000'000'000, 8);
  EXPECT_EQ(failure(unchecked.file(), "pw", "shorter than it says"), damaged);
}

TEST(AgileEncryption, WithADescriptionThatCannotBeIsRefused) {
  const auto good = agile_encrypted("book", "pw", {"SHA512", 256, 1000, true});
  const struct {
    const char* from;
    const char* to;
    EncryptionFault::Kind kind;
    const char* words;
  } rows[] = {
      {"spinCount=\"1000\"", "spinCount=\"10000001\"", damaged, "10000001 rounds"},
      {"spinCount=\"1000\"", "spinCount=\"-1\"", damaged, "rounds"},
      {"spinCount=\"1000\"", "spinCount=\"99999999999999999999\"", damaged, "rounds"},
      {"\"AES\"", "\"RC2\"", unsupported, "RC2"},
      {"ChainingModeCBC", "ChainingModeCFB", unsupported, "ChainingModeCFB"},
      {"hashAlgorithm=\"SHA512\"", "hashAlgorithm=\"WHIRLPOOL\"", unsupported, "WHIRLPOOL"},
      {"blockSize=\"16\"", "blockSize=\"8\"", damaged, "sizes"},
      {"keyBits=\"256\"", "keyBits=\"2147483647\"", damaged, "sizes"},
      {"keyBits=\"256\"", "keyBits=\"64\"", unsupported, "64 bits"},
      {"keyBits=\"256\"", "keyBits=\"0\"", damaged, "sizes"},
      {"hashSize=\"64\"", "hashSize=\"20\"", damaged, "sizes"},
      {"saltValue=", "salt=", damaged, "sizes"},
      {"encryptedVerifierHashInput=", "other=", unsupported, "certificates"},
      {"encryptedKeyValue=\"", "encryptedKeyValue=\"A", damaged, "length"},
      {"encryptedVerifierHashValue=", "other=", damaged, "length"},
      {"<keyData", "<other", damaged, "no key"},
      {"</encryption>", "</encrypt>", damaged, "mismatched"},
      {"<encryption ", "<!DOCTYPE x><encryption ", damaged, "document type"},
  };
  for (const auto& row : rows) {
    auto streams = good;
    for (std::size_t at = 0; (at = streams.info.find(row.from, at)) != std::string::npos;
         at += std::string(row.to).size())
      streams.info.replace(at, std::string(row.from).size(), row.to);
    EXPECT_EQ(failure(streams.file(), "pw", row.words), row.kind) << row.from << " " << row.to;
  }
}

TEST(StandardEncryption, WithADescriptionThatCannotBeIsRefused) {
  const struct {
    const char* what;
    std::size_t at;
    std::uint64_t value;
    EncryptionFault::Kind kind;
  } rows[] = {
      {"algorithm", 20, 0x6602, unsupported},
      {"hash", 24, 0x800C, unsupported},
      {"key of 2^31 bits", 28, 0x80000000, damaged},
      {"key of 72 bits", 28, 72, unsupported},
      {"header beyond the end", 8, 0xFFFFFFFF, damaged},
      {"header of nothing", 8, 0, damaged},
      {"salt of another size", 50, 0x7FFFFFFF, damaged},
      {"version", 0, 0x00030004, unsupported},
      {"version of the future", 0, 0x00090009, unsupported},
  };
  const auto good = standard_encrypted("book", "pw");
  for (const auto& row : rows) {
    auto streams = good;
    put_le(streams.info, row.at, row.value, 4);
    EXPECT_EQ(failure(streams.file(), "pw"), row.kind) << row.what;
  }
  for (std::size_t size = 0; size < good.info.size(); ++size) {
    auto streams = good;
    streams.info.resize(size);
    const auto kind = failure(streams.file(), "pw");
    EXPECT_EQ(kind, damaged) << size;
  }
}

TEST(Encryption, OtherCompoundFilesAreNamed) {
  EXPECT_EQ(failure(CompoundWriter().stream("Workbook", "x").bytes(), "", ".xls"), not_encrypted);
  EXPECT_EQ(failure(CompoundWriter().stream("Book", "x").bytes(), "", ".xls"), not_encrypted);
  EXPECT_EQ(failure(CompoundWriter().stream("WordDocument", "x").bytes(), "", "no workbook"),
            not_encrypted);
  EXPECT_EQ(failure(CompoundWriter().stream("EncryptedPackage", "x").bytes(), "", "rights"),
            unsupported);
}

}  // namespace
}  // namespace qto::test
