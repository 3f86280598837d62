#include "qto/hosts/embedded/encryption/encrypted_package.hpp"

#include <functional>
#include <utility>

#include "qto/hosts/embedded/encryption/agile_encryption.hpp"
#include "qto/hosts/embedded/encryption/compound_file.hpp"
#include "qto/hosts/embedded/encryption/standard_encryption.hpp"

namespace qto::embedded {
namespace {

using Kind = EncryptionFault::Kind;

constexpr std::string_view default_password = "VelvetSweatshop";
constexpr std::size_t version_size = 4;
constexpr std::size_t most_description_bytes = 1 << 20;

[[noreturn]] void refuse(Kind kind, const std::string& reason) {
  throw EncryptionFault(kind, reason);
}

[[noreturn]] void refuse_other(const CompoundFile& file) {
  if (file.find("Workbook") || file.find("Book"))
    refuse(Kind::not_encrypted, "this is a workbook of an older format (.xls)");
  if (file.find("EncryptedPackage"))
    refuse(Kind::unsupported,
           "the workbook is protected by a rights management service, which no password opens");
  refuse(Kind::not_encrypted, "this is a compound file, and no workbook");
}

/// Asks for the key with the password, or without one with the well-known one.
Bytes key_for(std::string_view password, const std::function<Bytes(std::string_view)>& key) {
  try {
    return key(password.empty() ? default_password : password);
  } catch (const EncryptionFault& fault) {
    if (fault.kind != Kind::wrong_password || !password.empty()) throw;
    refuse(Kind::no_password, "the workbook is encrypted");
  }
}

Bytes stream_of(const CompoundFile& file, const CompoundFile::Entry& info_entry,
                const CompoundFile::Entry& data_entry, std::string_view password) {
  if (info_entry.size > most_description_bytes)
    refuse(Kind::damaged, "the description of its encryption is too long");
  const Bytes info = file.read(info_entry);
  if (info.size() < version_size + 4)
    refuse(Kind::damaged, "the description of its encryption is cut off");
  const auto major = read_le<std::uint16_t>(info, 0);
  const auto minor = read_le<std::uint16_t>(info, 2);
  const ByteView rest = ByteView(info).subspan(version_size);
  if (major == 4 && minor == 4) {
    const ByteView xml = rest.subspan(4);
    const auto how =
        read_agile_description({reinterpret_cast<const char*>(xml.data()), xml.size()});
    const Bytes key = key_for(password, [&](std::string_view p) { return agile_key(how, p); });
    return decrypt_agile(how, key, file.read(data_entry));
  }
  if (minor == 2 && major >= 2 && major <= 4) {
    const auto how = read_standard_description(rest);
    const Bytes key = key_for(password, [&](std::string_view p) { return standard_key(how, p); });
    return decrypt_standard(how, key, file.read(data_entry));
  }
  refuse(Kind::unsupported, "it is encrypted in a way (version " + std::to_string(major) + "." +
                                std::to_string(minor) + ") that is not known");
}

}  // namespace

Bytes decrypt_package(Bytes bytes, std::string_view password) {
  const CompoundFile file(std::move(bytes));
  const CompoundFile::Entry* info = file.find("EncryptionInfo");
  const CompoundFile::Entry* data = file.find("EncryptedPackage");
  if (!info || !data || !info->is_stream || !data->is_stream) refuse_other(file);
  return stream_of(file, *info, *data, password);
}

}  // namespace qto::embedded
