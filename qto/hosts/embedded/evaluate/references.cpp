#include "qto/hosts/embedded/evaluate/references.hpp"

#include "qto/automation/text.hpp"

namespace qto::embedded {

namespace {

Rect enclosing(const Rect& a, const Rect& b) noexcept {
  return {{std::min(a.first.row, b.first.row), std::min(a.first.column, b.first.column)},
          {std::max(a.last.row, b.last.row), std::max(a.last.column, b.last.column)}};
}

Operand range_between(const Operand& left, const Operand& right) {
  Area result = left.areas().front();
  for (const Operand* side : {&left, &right})
    for (const Area& area : side->areas()) {
      if (area.sheet != result.sheet) return ErrorValue::value;
      result.rect = enclosing(result.rect, area.rect);
    }
  return result;
}

Operand intersection(const Operand& left, const Operand& right) {
  std::vector<Area> areas;
  for (const Area& a : left.areas())
    for (const Area& b : right.areas()) {
      if (a.sheet != b.sheet) continue;
      if (const auto common = a.rect.intersect(b.rect)) areas.push_back({a.sheet, *common});
    }
  if (areas.empty()) return ErrorValue::null;
  return Operand::of_areas(std::move(areas));
}

Operand union_of(const Operand& left, const Operand& right) {
  std::vector<Area> areas(left.areas().begin(), left.areas().end());
  areas.insert(areas.end(), right.areas().begin(), right.areas().end());
  return Operand::of_areas(std::move(areas));
}

/// The rows of a table that the items of a structured reference name.
Outcome<Rect> rows_of(const Table& table, unsigned items, const FormulaPlace& place) {
  if (items == 0) items = formula::StructuredRef::data;
  std::optional<Rect> rows;
  const auto take = [&](const std::optional<Rect>& part) {
    if (part) rows = rows ? enclosing(*rows, *part) : *part;
  };
  if (items & formula::StructuredRef::all) take(table.range);
  if (items & formula::StructuredRef::headers) take(table.headers());
  if (items & formula::StructuredRef::data) take(table.data());
  if (items & formula::StructuredRef::totals) take(table.totals());
  if (items & formula::StructuredRef::this_row) {
    const auto data = table.data();
    if (!data || place.at.row < data->first.row || place.at.row > data->last.row)
      return ErrorValue::value;
    take(Rect{{place.at.row, data->first.column}, {place.at.row, data->last.column}});
  }
  if (!rows) return ErrorValue::ref;
  return *rows;
}

}  // namespace

Operand join_references(formula::Operator op, const Operand& left, const Operand& right) {
  for (const Operand* side : {&left, &right}) {
    if (side->error()) return *side->error();
    if (!side->is_reference()) return ErrorValue::value;
  }
  if (op == formula::Operator::range) return range_between(left, right);
  return op == formula::Operator::intersect ? intersection(left, right) : union_of(left, right);
}

Book* ReferenceResolver::linked_book(const Book& owner, std::uint32_t index) {
  if (index >= owner.externals.size()) return nullptr;
  const ExternalBook& external = owner.externals[index];
  if (external.kind == ExternalBook::Kind::self) return const_cast<Book*>(&owner);
  if (external.kind != ExternalBook::Kind::workbook) return nullptr;
  if (Book* open = environment_.find_open_book(external.name)) return open;
  return &closed_.stand_in(owner, index);
}

Book* ReferenceResolver::book_of(const formula::SheetQualifier& qualifier,
                                 const FormulaPlace& place) {
  if (qualifier.external > 0) return linked_book(*place.book, qualifier.external - 1);
  if (qualifier.book.empty()) return place.book;
  if (Book* open = environment_.find_open_book(qualifier.book)) return open;
  if (text::equal_fold(qualifier.book, place.book->name)) return place.book;
  const auto& externals = place.book->externals;
  for (std::uint32_t i = 0; i < externals.size(); ++i)
    if (text::equal_fold(externals[i].name, qualifier.book)) return linked_book(*place.book, i);
  return nullptr;
}

Operand ReferenceResolver::area(const formula::AreaRef& area,
                                const formula::SheetQualifier& qualifier,
                                const FormulaPlace& place) {
  const Rect rect = area.resolve(place.at);
  if (!qualifier.present()) return Area{place.sheet, rect};
  if (qualifier.broken) return ErrorValue::ref;
  Book* book = book_of(qualifier, place);
  if (!book) return ErrorValue::ref;
  if (!qualifier.last_sheet.empty()) return span(qualifier, *book, rect);
  if (qualifier.sheet.empty()) return ErrorValue::ref;
  Sheet* sheet = book->find_sheet(qualifier.sheet);
  if (!sheet) return ErrorValue::ref;
  return Area{sheet, rect};
}

Operand ReferenceResolver::span(const formula::SheetQualifier& qualifier, Book& book,
                                const Rect& rect) {
  const Sheet* first = book.find_sheet(qualifier.sheet);
  const Sheet* last = book.find_sheet(qualifier.last_sheet);
  if (!first || !last) return ErrorValue::ref;
  int from = book.index_of(*first);
  int to = book.index_of(*last);
  if (from > to) std::swap(from, to);
  std::vector<Area> areas;
  for (int i = from; i <= to; ++i)
    if (book.sheets()[i]->is_worksheet()) areas.push_back({book.sheets()[i].get(), rect});
  return Operand::of_areas(std::move(areas), true);
}

Operand ReferenceResolver::table_data(const Table& table, const Book& book) {
  const auto data = table.data();
  Sheet* sheet = table.sheet ? book.find_sheet(table.sheet->name) : nullptr;
  if (!data || !sheet) return ErrorValue::ref;
  return Area{sheet, *data};
}

Operand ReferenceResolver::structured(const formula::StructuredRef& reference,
                                      const formula::SheetQualifier& qualifier,
                                      const FormulaPlace& place) {
  const Book* book = book_of(qualifier, place);
  if (!book) return ErrorValue::ref;
  const Table* table = reference.table.empty() ? book->table_at(*place.sheet, place.at)
                                               : book->find_table(reference.table);
  if (!table || !table->sheet) return ErrorValue::ref;
  const auto rows = rows_of(*table, reference.items, place);
  if (!rows) return rows.error();
  Rect rect = *rows;
  if (!reference.first_column.empty()) {
    const auto first = table->find_column(reference.first_column);
    const auto last =
        reference.last_column.empty() ? first : table->find_column(reference.last_column);
    if (!first || !last) return ErrorValue::ref;
    const int left = table->range.first.column;
    rect.first.column = left + std::min(*first, *last);
    rect.last.column = left + std::max(*first, *last);
  }
  Sheet* sheet = book->find_sheet(table->sheet->name);
  if (!sheet) return ErrorValue::ref;
  return Area{sheet, rect};
}

}  // namespace qto::embedded
