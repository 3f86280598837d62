#include "qto/host/range.hpp"
#include "qto/hosts/embedded/objects/open_book.hpp"
#include "qto/hosts/embedded/objects/worksheet_object.hpp"

namespace qto::embedded {

void OpenBook::calculate() { book_->calculation_done(); }

Ref<host::Range> WorksheetObject::CircularReference() const {
  OpenBook& book = open();
  const auto cell = book.circles.of(book.book()).first_on(sheet());
  return cell ? Cells(cell->row, cell->column) : nullptr;
}

}  // namespace qto::embedded
