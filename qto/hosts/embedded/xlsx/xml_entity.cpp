#include "qto/hosts/embedded/xlsx/xml_entity.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "qto/automation/text.hpp"

namespace qto::embedded {
namespace {

bool take(std::string_view& text, std::string_view word) noexcept {
  if (!text.starts_with(word)) return false;
  text.remove_prefix(word.size());
  return true;
}

bool take_spaces(std::string_view& text) noexcept {
  const std::size_t before = text.size();
  while (take(text, " ") || take(text, "\n") || take(text, "\t") || take(text, "\r\n")) continue;
  return text.size() != before;
}

/// The value of ` name="value"`, in either quotes; false when it is not there.
bool take_pseudo_attribute(std::string_view& text, std::string_view name,
                           std::string_view& value) noexcept {
  std::string_view ahead = text;
  if (!take_spaces(ahead) || !take(ahead, name) || !take(ahead, "=") || ahead.empty()) return false;
  const char quote = ahead.front();
  const std::size_t end = quote == '"' || quote == '\'' ? ahead.find(quote, 1) : ahead.npos;
  if (end == ahead.npos) return false;
  value = ahead.substr(1, end - 1);
  text = ahead.substr(end + 1);
  return true;
}

bool is_allowed(std::uint32_t code) noexcept {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code <= 0x10FFFF && !(code >= 0xD800 && code <= 0xDFFF) && (code & 0xFFFE) != 0xFFFE;
}

struct Entity {
  std::uint32_t code = 0;
  std::size_t length = 0;  ///< 0: not known
};

/// The entity that `text` begins with, "&" first.
Entity entity_at(std::string_view text) noexcept {
  const std::string_view body = text.substr(1, text.substr(0, 12).find(';') - 1);
  if (body.size() + 2 > text.size() || body.size() > 10) return {};
  const std::size_t length = body.size() + 2;
  if (body == "lt") return {'<', length};
  if (body == "gt") return {'>', length};
  if (body == "amp") return {'&', length};
  if (body == "quot") return {'"', length};
  if (body == "apos") return {'\'', length};
  if (body.size() < 2 || body[0] != '#') return {};
  const bool hex = body[1] == 'x';
  const char* const first = body.data() + (hex ? 2 : 1);
  const char* const last = body.data() + body.size();
  std::uint32_t code = 0;
  const auto [end, error] = std::from_chars(first, last, code, hex ? 16 : 10);
  if (first == last || error != std::errc() || end != last || !is_allowed(code)) return {};
  return {code, length};
}

char* append_utf8(char* out, std::uint32_t code) noexcept {
  const auto put = [&out](std::uint32_t byte) { *out++ = static_cast<char>(byte); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | code >> 6);
    put(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    put(0xE0 | code >> 12);
    put(0x80 | (code >> 6 & 0x3F));
    put(0x80 | (code & 0x3F));
  } else {
    put(0xF0 | code >> 18);
    put(0x80 | (code >> 12 & 0x3F));
    put(0x80 | (code >> 6 & 0x3F));
    put(0x80 | (code & 0x3F));
  }
  return out;
}

}  // namespace

std::size_t plain_prolog_length(std::string_view text) noexcept {
  const std::size_t size = text.size();
  take(text, "\xEF\xBB\xBF");
  if (take(text, "<?xml")) {
    std::string_view value;
    if (!take_pseudo_attribute(text, "version", value) || value != "1.0") return text.npos;
    if (take_pseudo_attribute(text, "encoding", value) && !text::equal_ascii_nocase(value, "utf-8"))
      return text.npos;
    if (take_pseudo_attribute(text, "standalone", value) && value != "yes" && value != "no")
      return text.npos;
    take_spaces(text);
    if (!take(text, "?>")) return text.npos;
    take_spaces(text);
  }
  return size - text.size();
}

bool entities_are_known(std::string_view text) noexcept {
  for (std::size_t at = text.find('&'); at != text.npos; at = text.find('&', at + 1))
    if (entity_at(text.substr(at)).length == 0) return false;
  return true;
}

std::size_t decode_entities(char* first, const char* last) noexcept {
  char* out = first;
  for (const char* in = first; in != last;) {
    if (*in != '&') {
      *out++ = *in++;
      continue;
    }
    const Entity entity = entity_at({in, static_cast<std::size_t>(last - in)});
    in += entity.length;
    out = append_utf8(out, entity.code);
  }
  return static_cast<std::size_t>(out - first);
}

bool is_xml_utf8(std::string_view text) noexcept {
  // U+FFFE and U+FFFF are no characters.
  for (std::size_t at = text.find("\xEF\xBF"); at != text.npos; at = text.find("\xEF\xBF", at + 1))
    if (at + 2 < text.size() && static_cast<unsigned char>(text[at + 2]) >= 0xBE) return false;
  return text::is_valid_utf8(text);
}

}  // namespace qto::embedded
