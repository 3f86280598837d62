#include "qto/automation/server/host_lists.hpp"

#include "qto/automation/collection_error.hpp"
#include "qto/automation/com/convert.hpp"
#include "qto/automation/com/errors.hpp"

namespace qto::server {

std::int32_t SheetList::Count() const {
  return worksheets_ ? book_->WorksheetsCount() : book_->SheetsCount();
}

Ref<Object> SheetList::Item(const Variant& index) const {
  if (index.is_text()) {
    if (worksheets_) return book_->Worksheets(index.text());
    return book_->Sheets(index.text());
  }
  Variant position = index;
  if (convert(position, {Shape::number, ""}) != Conversion::done)
    throw CallFailure(CallError::type_mismatch, 0);
  const std::int32_t at = *position.get_if<std::int32_t>();
  if (worksheets_) return book_->Worksheets(at);
  return book_->Sheets(at);
}

Ref<host::DefinedName> NameList::Item(const Variant& index) const {
  if (index.is_text()) return book_->Names(index.text());
  const auto names = book_->AllNames();
  const auto position = position_of(index);
  if (!position || *position > names.size()) throw_no_such_item();
  return names[*position - 1];
}

}  // namespace qto::server
