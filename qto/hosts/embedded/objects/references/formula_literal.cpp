#include "qto/hosts/embedded/objects/references/formula_literal.hpp"

#include <charconv>

namespace qto::embedded {
namespace {

void append_number(std::string& out, double number) {
  char digits[32];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  out.append(digits, end);
}

void append_quoted(std::string& out, std::string_view text) {
  out.push_back('"');
  for (const char c : text) {
    if (c == '"') out.push_back('"');
    out.push_back(c);
  }
  out.push_back('"');
}

}  // namespace

bool append_literal(std::string& out, const Variant& value, const Book& book) {
  if (const auto* number = value.get_if<double>())
    append_number(out, *number);
  else if (const auto* whole = value.get_if<std::int32_t>())
    append_number(out, *whole);
  else if (const auto* date = value.get_if<Date>())
    append_number(out, date->serial - book.date_shift());
  else if (const auto* flag = value.get_if<bool>())
    out.append(*flag ? "TRUE" : "FALSE");
  else if (const auto* error = value.get_if<ErrorValue>())
    out.append(error_text(*error));
  else if (value.is_text())
    append_quoted(out, value.text());
  else
    return false;
  return true;
}

}  // namespace qto::embedded
