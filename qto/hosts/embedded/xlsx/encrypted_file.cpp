#include "qto/hosts/embedded/xlsx/encrypted_file.hpp"

#include <array>
#include <fstream>

#include "qto/automation/file_path.hpp"
#include "qto/hosts/embedded/encryption/compound_file.hpp"
#include "qto/hosts/embedded/encryption/encrypted_package.hpp"
#include "qto/hosts/embedded/encryption/encryption_fault.hpp"
#include "qto/hosts/embedded/xlsx/limits.hpp"
#include "qto/hosts/embedded/xlsx/open_failure.hpp"

namespace qto::embedded {
namespace {

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
Bytes read_all(std::ifstream& content, const std::string& file) {
  Bytes bytes;
  std::array<char, 1 << 16> block;
  content.clear();
  content.seekg(0);
  while (content.read(block.data(), block.size()), content.gcount() > 0) {
    if (bytes.size() > limits::encrypted_bytes)
      throw OpenFailure(OpenFailureKind::too_large, file, "", 0,
                        "the encrypted workbook is larger than 1 GiB");
    bytes.insert(bytes.end(), block.data(), block.data() + content.gcount());
  }
  return bytes;
}

}  // namespace

std::optional<Bytes> read_encrypted_file(const std::string& file, std::string_view password) {
  std::ifstream content(text::to_path(file), std::ios::binary);
  std::array<char, 8> head{};
  if (!content.read(head.data(), head.size())) return std::nullopt;
  const Bytes begin(head.begin(), head.end());
  if (!CompoundFile::is_one(begin)) return std::nullopt;
  try {
    return decrypt_package(read_all(content, file), password);
  } catch (const EncryptionFault& fault) {
    throw OpenFailure(kind_of(fault.kind), file, "", 0, fault.what(), remedy_for(fault.kind));
  }
}

}  // namespace qto::embedded
