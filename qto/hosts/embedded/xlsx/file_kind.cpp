#include "qto/hosts/embedded/xlsx/file_kind.hpp"

#include <array>
#include <cerrno>
#include <fstream>
#include <string_view>
#include <system_error>

#include "qto/automation/file_path.hpp"
#include "qto/hosts/embedded/encryption/compound_file.hpp"
#include "qto/hosts/embedded/encryption/encrypted_package.hpp"
#include "qto/hosts/embedded/xlsx/open_failure.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {
namespace {

constexpr std::string_view zip_magic = "PK";

OpenFailureKind kind_of(EncryptionFault::Kind fault) noexcept {
  switch (fault) {
    case EncryptionFault::Kind::no_password:
      return OpenFailureKind::encrypted;
    case EncryptionFault::Kind::unsupported:
      return OpenFailureKind::unknown_cipher;
    case EncryptionFault::Kind::wrong_password:
      return OpenFailureKind::wrong_password;
    case EncryptionFault::Kind::not_encrypted:
      return OpenFailureKind::not_a_workbook;
    case EncryptionFault::Kind::damaged:
      break;
  }
  return OpenFailureKind::damaged;
}

std::string_view remedy_for(EncryptionFault::Kind fault) noexcept {
  if (fault == EncryptionFault::Kind::not_encrypted) return "Save it as .xlsx or .xlsm";
  if (fault == EncryptionFault::Kind::unsupported) return "Save it without encryption";
  return "";
}

/// The whole file. It may grow or shrink meanwhile; what there was is what counts.
Bytes read_all(std::ifstream& content, const std::string& file, std::uint64_t most_bytes) {
  Bytes bytes;
  std::array<char, 1 << 16> block;
  content.clear();
  content.seekg(0);
  while (content.read(block.data(), block.size()), content.gcount() > 0) {
    if (bytes.size() > most_bytes)
      throw OpenFailure(OpenFailureKind::too_large, file, "", 0,
                        "the encrypted workbook is too large",
                        "The limit is encrypted-bytes=" + std::to_string(most_bytes));
    bytes.insert(bytes.end(), block.data(), block.data() + content.gcount());
  }
  return bytes;
}

}  // namespace

void refuse_file(const std::string& file, const std::string& reason) {
  std::error_code error;
  const auto path = text::to_path(file);
  const auto status = std::filesystem::status(path, error);
  if (status.type() == std::filesystem::file_type::not_found)
    throw OpenFailure(OpenFailureKind::not_found, file, "", 0, "there is no such file");
  if (status.type() == std::filesystem::file_type::directory)
    throw OpenFailure(OpenFailureKind::not_readable, file, "", 0, "this is a folder");
  errno = 0;
  std::ifstream content(path, std::ios::binary);
  if (!content)
    throw OpenFailure(OpenFailureKind::not_readable, file, "", 0,
                      errno != 0 ? std::generic_category().message(errno) : "cannot be read");
  std::string head(zip_magic.size(), '\0');
  content.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(content.gcount()));
  if (head.empty())
    throw OpenFailure(OpenFailureKind::not_a_package, file, "", 0, "the file is empty");
  if (head.starts_with(zip_magic))
    throw OpenFailure(OpenFailureKind::damaged, file, "", 0,
                      "the zip container is damaged or cut off (" + reason + ")");
  throw OpenFailure(OpenFailureKind::not_a_package, file, "", 0,
                    head.front() == '<' ? "this is a web page or XML text, not a workbook"
                                        : "this is not a workbook (no zip container)");
}

void refuse_package(const Package& package) {
  const auto refuse = [&](std::string_view reason, std::string_view remedy = {}) {
    package.fail(OpenFailureKind::not_a_workbook, "", 0, reason, remedy);
  };
  if (package.find("xl/workbook.bin"))
    refuse("this is a binary workbook (.xlsb)", "Save it as .xlsx or .xlsm");
  if (package.find("mimetype") && package.find("content.xml"))
    refuse("this is an OpenDocument file", "Save it as .xlsx or .xlsm");
  if (package.find("word/document.xml")) refuse("this is a text document, not a workbook");
  if (package.find("ppt/presentation.xml")) refuse("this is a presentation, not a workbook");
  refuse("the zip container holds no workbook part");
  std::abort();
}

std::optional<Bytes> read_encrypted_file(const std::string& file, std::string_view password,
                                         const Limits& limits) {
  std::ifstream content(text::to_path(file), std::ios::binary);
  std::array<char, 8> head{};
  if (!content.read(head.data(), head.size())) return std::nullopt;
  const Bytes begin(head.begin(), head.end());
  if (!CompoundFile::is_one(begin)) return std::nullopt;
  try {
    return decrypt_package(read_all(content, file, limits.encrypted_bytes), password);
  } catch (const EncryptionFault& fault) {
    throw OpenFailure(kind_of(fault.kind), file, "", 0, fault.what(), remedy_for(fault.kind));
  }
}

}  // namespace qto::embedded
