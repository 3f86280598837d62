#include <expat.h>

#include <charconv>
#include <cstring>
#include <memory>
#include <optional>

#include "qto/hosts/embedded/encryption/agile_encryption.hpp"
#include "qto/hosts/embedded/encryption/bytes.hpp"
#include "qto/hosts/embedded/encryption/encrypted_package.hpp"

namespace qto::embedded {
namespace {

struct FreeParser {
  void operator()(XML_ParserStruct* parser) const { XML_ParserFree(parser); }
};

[[noreturn]] void damaged_description(const std::string& what) {
  throw EncryptionFault(EncryptionFault::Kind::damaged,
                        "the description of its encryption is damaged: " + what);
}

/// The attributes of an element, names and values in turn.
class Fields {
 public:
  explicit Fields(const char** list) : list_(list) {}

  std::string_view text(std::string_view name) const {
    for (const char** at = list_; *at; at += 2)
      if (name == *at) return at[1];
    return {};
  }
  std::int64_t number(std::string_view name) const {
    const std::string_view value = text(name);
    std::int64_t number = -1;
    std::from_chars(value.data(), value.data() + value.size(), number);
    return number;
  }
  /// Empty when there is none or it is no base64; whoever needs it checks the length.
  Bytes bytes(std::string_view name) const { return from_base64(text(name)).value_or(Bytes()); }

 private:
  const char** list_;
};

AgileKey key_of(const Fields& fields) {
  return {std::string(fields.text("cipherAlgorithm")),
          std::string(fields.text("cipherChaining")),
          std::string(fields.text("hashAlgorithm")),
          fields.bytes("saltValue"),
          fields.number("blockSize"),
          fields.number("keyBits"),
          fields.number("hashSize")};
}

struct Reading {
  AgileDescription into;
  bool has_data = false;
  bool has_password = false;
  bool has_doctype = false;
};

void take_element(Reading& reading, std::string_view name, const Fields& fields) {
  // Prefixes differ between writers; the local names are unambiguous.
  name = name.substr(name.find(':') + 1);
  AgileDescription& into = reading.into;
  if (name == "keyData" && !reading.has_data) {
    reading.has_data = true;
    into.data = key_of(fields);
  } else if (name == "dataIntegrity") {
    into.integrity_key = fields.bytes("encryptedHmacKey");
    into.integrity_value = fields.bytes("encryptedHmacValue");
  } else if (name == "encryptedKey" && !reading.has_password &&
             !fields.text("encryptedVerifierHashInput").empty()) {
    reading.has_password = true;
    into.password = key_of(fields);
    into.rounds = fields.number("spinCount");
    into.verifier = fields.bytes("encryptedVerifierHashInput");
    into.verifier_hash = fields.bytes("encryptedVerifierHashValue");
    into.key = fields.bytes("encryptedKeyValue");
  }
}

}  // namespace

AgileDescription read_agile_description(std::string_view xml) {
  const std::unique_ptr<XML_ParserStruct, FreeParser> parser(XML_ParserCreate(nullptr));
  if (!parser) throw std::bad_alloc();
  Reading reading;
  XML_SetUserData(parser.get(), &reading);
  XML_SetStartElementHandler(parser.get(), [](void* data, const char* name, const char** list) {
    take_element(*static_cast<Reading*>(data), name, Fields(list));
  });
  XML_SetStartDoctypeDeclHandler(parser.get(),
                                 [](void* data, const char*, const char*, const char*, int) {
                                   static_cast<Reading*>(data)->has_doctype = true;
                                 });
  // Some writers fill the stream up with zeros.
  xml = xml.substr(0, xml.find_last_not_of('\0') + 1);
  if (XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()), true) != XML_STATUS_OK)
    damaged_description(XML_ErrorString(XML_GetErrorCode(parser.get())));
  if (reading.has_doctype) damaged_description("a document type declaration is not allowed");
  if (!reading.has_data) damaged_description("it names no key for the data");
  if (!reading.has_password)
    throw EncryptionFault(EncryptionFault::Kind::unsupported,
                          "it is encrypted for certificates, and no password opens it");
  return std::move(reading.into);
}

}  // namespace qto::embedded
