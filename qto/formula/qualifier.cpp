#include "qto/formula/qualifier.hpp"

#include <charconv>

#include "qto/automation/text.hpp"
#include "qto/formula/token_values.hpp"

namespace qto::formula {
namespace {

bool names_a_workbook(std::string_view text) {
  if (text.find_first_of("\\/") != std::string_view::npos) return true;
  const std::size_t dot = text.rfind('.');
  if (dot == std::string_view::npos) return false;
  const std::string extension = text::upper_ascii(text.substr(dot + 1));
  return extension.starts_with("XL") || extension == "CSV" || extension == "ODS";
}

void set_sheets(SheetQualifier& qualifier, std::string_view sheets) {
  const std::size_t colon = sheets.find(':');
  qualifier.sheet = sheets.substr(0, colon);
  if (colon != std::string_view::npos) qualifier.last_sheet = sheets.substr(colon + 1);
}

/// "[1]" or "[Book2.xlsx]": a link of the file by number (0: the own book), or a book by name.
void set_book(SheetQualifier& qualifier, std::string_view book) {
  std::uint32_t number = 0;
  const auto [end, failure] = std::from_chars(book.data(), book.data() + book.size(), number);
  if (failure == std::errc() && end == book.data() + book.size())
    qualifier.external = number;
  else
    qualifier.book = book;
}

}  // namespace

SheetQualifier parse_qualifier(std::string_view token) {
  SheetQualifier qualifier;
  token.remove_suffix(token.ends_with('!') ? 1 : 0);
  if (token == "#REF") {
    qualifier.broken = true;
    return qualifier;
  }
  if (token.find('|') != std::string_view::npos) {
    qualifier.book = token;
    return qualifier;
  }
  const std::string plain = token.starts_with('\'') ? unquote(token) : std::string(token);
  std::string_view rest = plain;
  if (const std::size_t open = rest.find('['); open != std::string_view::npos) {
    const std::size_t close = rest.find(']', open);
    if (close != std::string_view::npos) {
      set_book(qualifier, rest.substr(open + 1, close - open - 1));
      qualifier.folder = rest.substr(0, open);
      rest.remove_prefix(close + 1);
      qualifier.broken = rest == "#REF";
      if (!qualifier.broken) set_sheets(qualifier, rest);
      return qualifier;
    }
  }
  if (names_a_workbook(rest)) {
    const std::size_t name = rest.find_last_of("\\/") + 1;
    qualifier.folder = rest.substr(0, name);
    qualifier.book = rest.substr(name);
  } else {
    set_sheets(qualifier, rest);
  }
  return qualifier;
}

}  // namespace qto::formula
