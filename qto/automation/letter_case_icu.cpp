#include <unicode/locid.h>
#include <unicode/unistr.h>

#include "qto/automation/text.hpp"

namespace qto::text {
namespace {

icu::UnicodeString to_icu(std::string_view text) {
  return icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::string from_icu(const icu::UnicodeString& text) {
  std::string out;
  text.toUTF8String(out);
  return out;
}

}  // namespace

std::string to_upper(std::string_view text) {
  return from_icu(to_icu(text).toUpper(icu::Locale::getRoot()));
}

std::string to_lower(std::string_view text) {
  return from_icu(to_icu(text).toLower(icu::Locale::getRoot()));
}

}  // namespace qto::text
