#include "cli/output/json_writer.hpp"

#include <fmt/format.h>

#include <cmath>
#include <iterator>

#include "qto/automation/text.hpp"

namespace qto::cli {
namespace {

constexpr std::size_t flush_at = 64 * 1024;
/// Deeper elements share the line of the one that holds them.
constexpr int levels_on_lines = 2;

/// Well-formed UTF-8: every byte that belongs to none becomes a question mark.
std::string repaired(std::string_view value) {
  std::string out;
  for (std::size_t i = 0; i < value.size();) {
    std::size_t length = 1;
    while (length < 4 && i + length < value.size() && (value[i + length] & 0xC0) == 0x80) ++length;
    const std::string_view letter = value.substr(i, length);
    if (text::is_valid_utf8(letter))
      out += letter;
    else
      out.append(length, '?');
    i += length;
  }
  return out;
}

}  // namespace

void JsonWriter::flush() {
  std::fwrite(buffer_.data(), 1, buffer_.size(), out_);
  buffer_.clear();
}

void JsonWriter::finish() {
  buffer_ += '\n';
  flush();
}

void JsonWriter::separate() {
  if (buffer_.size() > flush_at) flush();
  if (after_key_) {
    after_key_ = false;
    return;
  }
  if (!first_) buffer_ += ',';
  if (depth_ > 0 && depth_ <= levels_on_lines)
    buffer_.append(1, '\n').append(static_cast<std::size_t>(depth_), ' ');
  else if (!first_)
    buffer_ += ' ';
  first_ = false;
}

void JsonWriter::begin(char bracket) {
  separate();
  buffer_ += bracket;
  ++depth_;
  first_ = true;
}

void JsonWriter::end(char bracket) {
  if (!first_ && depth_ <= levels_on_lines)
    buffer_.append(1, '\n').append(static_cast<std::size_t>(depth_) - 1, ' ');
  --depth_;
  buffer_ += bracket;
  first_ = false;
}

void JsonWriter::key(std::string_view name) {
  separate();
  append_quoted(name);
  buffer_ += ": ";
  after_key_ = true;
}

void JsonWriter::text(std::string_view value) {
  separate();
  append_quoted(value);
}

void JsonWriter::append_quoted(std::string_view value) {
  std::string valid;
  if (!qto::text::is_valid_utf8(value)) value = valid = repaired(value);
  buffer_ += '"';
  for (const char c : value) {
    if (c == '"' || c == '\\')
      buffer_.append(1, '\\').append(1, c);
    else if (c == '\n')
      buffer_ += "\\n";
    else if (static_cast<unsigned char>(c) < 0x20)
      fmt::format_to(std::back_inserter(buffer_), "\\u{:04x}", static_cast<int>(c));
    else
      buffer_ += c;
  }
  buffer_ += '"';
}

void JsonWriter::number(double value) {
  if (!std::isfinite(value)) return null();
  separate();
  fmt::format_to(std::back_inserter(buffer_), "{}", value);
}

void JsonWriter::number(std::int64_t value) {
  separate();
  fmt::format_to(std::back_inserter(buffer_), "{}", value);
}

void JsonWriter::boolean(bool value) {
  separate();
  buffer_ += value ? "true" : "false";
}

void JsonWriter::null() {
  separate();
  buffer_ += "null";
}

}  // namespace qto::cli
