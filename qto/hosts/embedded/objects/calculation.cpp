#include "qto/hosts/embedded/objects/open_book.hpp"
#include "qto/hosts/embedded/objects/worksheet_object.hpp"
#include "qto/host/range.hpp"

namespace qto::embedded {

void OpenBook::calculate() { book_->calculation_done(); }

Ref<host::Range> WorksheetObject::CircularReference() const { return nullptr; }

}  // namespace qto::embedded
