#include "qto/hosts/embedded/objects/link_formula.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"
#include "qto/formula/qualifier.hpp"
#include "qto/hosts/embedded/objects/application_object.hpp"
#include "qto/hosts/embedded/objects/checks/full_name.hpp"
#include "qto/hosts/embedded/objects/links.hpp"
#include "qto/hosts/embedded/objects/references/rewrite_tokens.hpp"

namespace qto::embedded {
namespace {

/// What a qualifier says about the folder, with its separator: 'D:\Data\[Book2.xlsx]Sheet1'! and
/// 'D:\Data\Book2.xlsx'! say D:\Data\.
std::string written_folder(std::string_view token) {
  if (!token.starts_with('\'')) return {};
  token = token.substr(1, token.find('[') - 1);
  const std::size_t cut = token.find_last_of("/\\");
  return cut == std::string_view::npos ? std::string{} : std::string(token.substr(0, cut + 1));
}

std::string folder_of(const OpenBook& open, const std::string& name, std::string_view token) {
  std::string folder = written_folder(token);
  const OpenBook* target = folder.empty() ? open.application().find_book(name) : nullptr;
  return target ? join_path(target->book().path, "") : folder;
}

/// The number of the link from 1, 0 when there is none.
std::size_t find_link(const OpenBook& open, std::string_view name, std::string_view folder) {
  const auto& links = open.book().externals;
  for (std::size_t i = 0; i < links.size(); ++i) {
    const ExternalBook& link = links[i];
    if (link.kind != ExternalBook::Kind::workbook || !text::equal_fold(link.name, name)) continue;
    if (folder.empty() || link.folder.empty() || link.folder == folder ||
        stored_name(open.book(), i, open.stored_links) == join_path(folder, name))
      return i + 1;
  }
  return 0;
}

std::size_t add_link(OpenBook& open, std::string name, std::string folder) {
  Book& book = open.book();
  ExternalBook link;
  link.name = std::move(name);
  link.folder = std::move(folder);
  const bool placed = !link.folder.empty();
  book.externals.push_back(std::move(link));
  if (placed)
    resolve_link(book, book.externals.size() - 1, open.application().search_folders,
                 open.stored_links);
  return book.externals.size();
}

/// Lists the sheet among those whose values the link remembers.
void add_sheet(ExternalBook& link, const std::string& sheet) {
  if (sheet.empty() || std::any_of(link.sheets.begin(), link.sheets.end(), [&](const auto& known) {
        return text::equal_fold(known, sheet);
      }))
    return;
  link.sheets.push_back(sheet);
  link.values.resize(link.sheets.size());
}

void append_numbered(std::string& out, std::size_t number,
                     const formula::SheetQualifier& qualifier) {
  std::string sheets = qualifier.sheet;
  if (!qualifier.last_sheet.empty()) sheets += ":" + qualifier.last_sheet;
  const std::string text = "[" + std::to_string(number) + "]" + sheets;
  const bool quotes = (!qualifier.sheet.empty() && needs_quotes(qualifier.sheet)) ||
                      (!qualifier.last_sheet.empty() && needs_quotes(qualifier.last_sheet));
  if (quotes)
    append_sheet_name(out, text);
  else
    out.append(text);
  out.push_back('!');
}

/// Lets `number_of(qualifier, folder)` number the links; 0 leaves a reference as it is.
template <class NumberOf>
std::string number_qualifiers(std::string_view formula, const OpenBook& book,
                              NumberOf&& number_of) {
  return rewrite_tokens(formula, [&](formula::TokenKind kind, std::string_view text,
                                     formula::TokenKind, std::string& out) {
    const formula::SheetQualifier qualifier = kind == formula::TokenKind::qualifier
                                                  ? formula::parse_qualifier(text)
                                                  : formula::SheetQualifier{};
    const bool document = qualifier.book.find('|') != std::string::npos;
    const bool own = text::equal_fold(qualifier.book, book.book().name);
    std::size_t number = 0;
    if (!qualifier.book.empty() && !own && !document && !qualifier.broken)
      number = number_of(qualifier, folder_of(book, qualifier.book, text));
    if (number == 0) return void(out.append(text));
    append_numbered(out, number, qualifier);
  });
}

}  // namespace

std::string number_links(std::string_view formula, OpenBook& book) {
  return number_qualifiers(formula, book,
                           [&](const formula::SheetQualifier& qualifier, std::string folder) {
                             std::size_t number = find_link(book, qualifier.book, folder);
                             if (number == 0)
                               number = add_link(book, qualifier.book, std::move(folder));
                             add_sheet(book.book().externals[number - 1], qualifier.sheet);
                             return number;
                           });
}

std::string number_known_links(std::string_view formula, const OpenBook& book) {
  if (book.book().externals.empty()) return std::string(formula);
  return number_qualifiers(
      formula, book, [&](const formula::SheetQualifier& qualifier, const std::string& folder) {
        return find_link(book, qualifier.book, folder);
      });
}

}  // namespace qto::embedded
