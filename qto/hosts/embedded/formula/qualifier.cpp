#include "qto/hosts/embedded/formula/qualifier.hpp"

#include <charconv>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/formula/token_values.hpp"

namespace qto::embedded {
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

std::string sheets_of(const SheetQualifier& qualifier) {
  if (qualifier.broken) return "#REF";
  if (qualifier.last_sheet.empty()) return qualifier.sheet;
  return qualifier.sheet + ':' + qualifier.last_sheet;
}

bool sheets_need_quotes(const SheetQualifier& qualifier) {
  if (qualifier.broken) return false;
  return needs_quotes(qualifier.sheet) ||
         (!qualifier.last_sheet.empty() && needs_quotes(qualifier.last_sheet));
}

void append_application_link(std::string& out, const ExternalBook& link) {
  append_sheet_name(out, link.application);
  out.push_back('|');
  append_sheet_name(out, link.document);
}

void append_workbook(std::string& out, const SheetQualifier& qualifier, std::string_view folder,
                     const std::string& name) {
  const std::string sheets = sheets_of(qualifier);
  std::string text(folder);
  if (sheets.empty())
    text += name;
  else
    text.append("[").append(name).append("]").append(sheets);
  const bool quotes =
      !folder.empty() || needs_quotes(name) || (!sheets.empty() && sheets_need_quotes(qualifier));
  // Brackets alone do not ask for apostrophes.
  quotes ? append_sheet_name(out, text) : void(out += text);
}

void append_number(std::string& out, const SheetQualifier& qualifier) {
  const std::string text = '[' + std::to_string(qualifier.external) + ']' + sheets_of(qualifier);
  const bool quotes = !qualifier.sheet.empty() && sheets_need_quotes(qualifier);
  quotes ? append_sheet_name(out, text) : void(out += text);
}

void append_own(std::string& out, const SheetQualifier& qualifier, const RenderContext& context) {
  if (!qualifier.sheet.empty()) {
    const std::string sheets = sheets_of(qualifier);
    sheets_need_quotes(qualifier) ? append_sheet_name(out, sheets) : void(out += sheets);
  } else if (context.book && !context.book->name.empty()) {
    append_sheet_name(out, context.book->name);
  } else {
    return;
  }
  out.push_back('!');
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
      rest.remove_prefix(close + 1);
      qualifier.broken = rest == "#REF";
      if (!qualifier.broken) set_sheets(qualifier, rest);
      return qualifier;
    }
  }
  if (names_a_workbook(rest))
    qualifier.book = rest.substr(rest.find_last_of("\\/") + 1);
  else
    set_sheets(qualifier, rest);
  return qualifier;
}

void append_link_qualifier(std::string& out, const SheetQualifier& qualifier,
                           const RenderContext& context) {
  const std::uint32_t number = qualifier.external;
  if (number == 0) return append_own(out, qualifier, context);
  if (!context.book || number > context.book->externals.size()) {
    append_number(out, qualifier);
    out.push_back('!');
    return;
  }
  const ExternalBook& link = context.book->externals[number - 1];
  if (link.kind == ExternalBook::Kind::self) return append_own(out, qualifier, context);
  if (link.kind != ExternalBook::Kind::workbook) {
    append_application_link(out, link);
  } else {
    const bool open = context.is_open && context.is_open(*context.book, number - 1, context.data);
    append_workbook(out, qualifier, open ? "" : link.folder, link.name);
  }
  out.push_back('!');
}

}  // namespace qto::embedded
