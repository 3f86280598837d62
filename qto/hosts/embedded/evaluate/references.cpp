#include "qto/hosts/embedded/evaluate/references.hpp"

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formulas/table_target.hpp"

namespace qto::embedded {

namespace {

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

Operand ReferenceResolver::structured(const formula::StructuredRef& reference,
                                      const formula::SheetQualifier& qualifier,
                                      const FormulaPlace& place) {
  const Book* book = book_of(qualifier, place);
  if (!book) return ErrorValue::ref;
  const StructuredTarget target = resolve_structured(reference, *book, *place.sheet, place.at);
  if (target.error) return *target.error;
  Sheet* sheet = book->find_sheet(target.table->sheet->name);
  if (!sheet) return ErrorValue::ref;
  return Area{sheet, target.rect};
}

}  // namespace qto::embedded
