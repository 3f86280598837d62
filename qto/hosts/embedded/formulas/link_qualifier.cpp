#include "qto/hosts/embedded/formulas/link_qualifier.hpp"

#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {
namespace {

std::string sheets_of(const formula::SheetQualifier& qualifier) {
  if (qualifier.broken) return "#REF";
  if (qualifier.last_sheet.empty()) return qualifier.sheet;
  return qualifier.sheet + ':' + qualifier.last_sheet;
}

bool sheets_need_quotes(const formula::SheetQualifier& qualifier) {
  if (qualifier.broken) return false;
  return needs_quotes(qualifier.sheet) ||
         (!qualifier.last_sheet.empty() && needs_quotes(qualifier.last_sheet));
}

void append_application_link(std::string& out, const ExternalBook& link) {
  append_sheet_name(out, link.application);
  out.push_back('|');
  append_sheet_name(out, link.document);
}

void append_workbook(std::string& out, const formula::SheetQualifier& qualifier,
                     std::string_view folder, const std::string& name) {
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

void append_number(std::string& out, const formula::SheetQualifier& qualifier) {
  const std::string text = '[' + std::to_string(qualifier.external) + ']' + sheets_of(qualifier);
  const bool quotes = !qualifier.sheet.empty() && sheets_need_quotes(qualifier);
  quotes ? append_sheet_name(out, text) : void(out += text);
}

void append_own(std::string& out, const formula::SheetQualifier& qualifier,
                const RenderContext& context) {
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

const Book* find_open_link(const RenderContext& context, std::uint32_t number) {
  if (!context.book || number == 0 || number > context.book->externals.size()) return nullptr;
  if (context.book->externals[number - 1].kind == ExternalBook::Kind::self) return context.book;
  return context.find_open ? context.find_open(*context.book, number - 1, context.data) : nullptr;
}

void append_link_qualifier(std::string& out, const formula::SheetQualifier& qualifier,
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
    append_workbook(out, qualifier, find_open_link(context, number) ? "" : link.folder, link.name);
  }
  out.push_back('!');
}

}  // namespace qto::embedded
