#include "qto/parser/exact/place.hpp"

#include <algorithm>
#include <utility>

#include "qto/formula/token_values.hpp"

namespace qto::exact {
namespace {

std::string unquoted(std::string_view text) {
  return text.starts_with('\'') ? formula::unquote(text) : std::string(text);
}

Place link_to(std::string_view written) {
  Place place;
  place.kind = Place::Kind::link;
  const std::size_t bar = written.find('|');
  place.application = unquoted(written.substr(0, bar));
  place.document = unquoted(written.substr(bar + 1));
  return place;
}

/// The worksheets from the first to the last in the order of the book, whichever way they are
/// written; sheets without cells are passed over.
std::vector<Ref<SheetRecord>> span_of(const host::Workbook& book, const std::string& first,
                                      const std::string& last, Surroundings& surroundings) {
  const auto one_end = book.find_sheet(first);
  const auto other_end = book.find_sheet(last);
  if (!one_end || !other_end) return {};
  const auto [from, to] = std::minmax({one_end->Index(), other_end->Index()});
  std::vector<Ref<SheetRecord>> sheets;
  for (int position = from; position <= to; ++position)
    if (const auto sheet = ref_cast<host::Worksheet>(book.Sheets(position)))
      sheets.push_back(surroundings.record_of(sheet));
  return sheets;
}

Place in_book(Ref<host::Workbook> book, const formula::SheetQualifier& qualifier,
              Surroundings& surroundings) {
  Place place;
  place.workbook = std::move(book);
  if (qualifier.sheet.empty()) {
    place.kind = Place::Kind::book;
    return place;
  }
  if (!qualifier.last_sheet.empty())
    place.sheets = span_of(*place.workbook, qualifier.sheet, qualifier.last_sheet, surroundings);
  else if (const auto sheet = place.workbook->find_worksheet(qualifier.sheet))
    place.sheets.push_back(surroundings.record_of(sheet));
  place.kind = place.sheets.empty() ? Place::Kind::missing : Place::Kind::sheets;
  return place;
}

std::string sheets_text(const formula::SheetQualifier& qualifier) {
  if (qualifier.last_sheet.empty()) return qualifier.sheet;
  return qualifier.sheet + ":" + qualifier.last_sheet;
}

}  // namespace

Place resolve_place(const formula::SheetQualifier& qualifier, const Site& site,
                    Surroundings& surroundings) {
  Place place;
  if (qualifier.broken) {
    place.kind = Place::Kind::deleted;
    return place;
  }
  if (qualifier.book.find('|') != std::string::npos) return link_to(qualifier.book);
  if (qualifier.external > 0 || !qualifier.book.empty()) {
    const std::string book =
        qualifier.external > 0 ? std::to_string(qualifier.external) : qualifier.book;
    if (auto open = surroundings.find_book(qualifier.folder, book))
      return in_book(std::move(open), qualifier, surroundings);
    place.kind = Place::Kind::closed;
    place.closed = {qualifier.folder, book, sheets_text(qualifier)};
    return place;
  }
  if (!qualifier.present()) {
    place.workbook = site.workbook;
    if (site.sheet) place.sheets.push_back(site.sheet);
    place.kind = site.sheet ? Place::Kind::sheets : Place::Kind::book;
    return place;
  }
  if (!site.workbook) return place;
  place = in_book(site.workbook, qualifier, surroundings);
  if (place.kind != Place::Kind::missing || !qualifier.last_sheet.empty()) return place;
  // A workbook whose name shows no extension may stand without brackets too.
  if (auto open = surroundings.find_book({}, qualifier.sheet)) {
    place.kind = Place::Kind::book;
    place.workbook = std::move(open);
  }
  return place;
}

}  // namespace qto::exact
