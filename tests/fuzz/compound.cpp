#include "qto/hosts/embedded/encryption/compound_file.hpp"
#include "qto/hosts/embedded/encryption/encrypted_package.hpp"

/// Any bytes as an encrypted workbook, and every stream of them as a compound file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace qto::embedded;
  const Bytes bytes(data, data + size);
  try {
    const CompoundFile file(bytes);
    for (const CompoundFile::Entry& entry : file.entries())
      if (entry.is_stream) file.read(entry);
  } catch (const EncryptionFault&) {
  }
  try {
    decrypt_package(bytes, "secret");
  } catch (const EncryptionFault&) {
  }
  return 0;
}
