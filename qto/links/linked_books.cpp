#include "qto/links/linked_books.hpp"

#include "qto/automation/collection_error.hpp"
#include "qto/diagnostics/procedure.hpp"

namespace qto {

void LinkedBooks::AddExisting(const Ref<LinkedBook>& book) {
  Procedure proc("LinkedBooks", "AddExisting");
  if (!book) throw_no_object();
  if (!books_.add(FoldedKey(book->FullNameWithPath()), book)) throw_key_present();
}

std::int32_t LinkedBooks::Count() const {
  Procedure proc("LinkedBooks", "Count[Get]");
  return static_cast<std::int32_t>(books_.count());
}

Ref<LinkedBook> LinkedBooks::Item(const Variant& position_or_key) const {
  Procedure proc("LinkedBooks", "Item[Get]");
  LinkedBook* found = nullptr;
  if (position_or_key.is_text())
    found = books_.find(FoldedKey(position_or_key.text()));
  else if (const auto position = position_of(position_or_key))
    found = books_.at(*position);
  if (!found) throw_no_such_item();
  return Ref<LinkedBook>(found);
}

void LinkedBooks::Remove(const Variant& position_or_key) {
  Procedure proc("LinkedBooks", "Remove");
  bool removed = false;
  if (position_or_key.is_text())
    removed = books_.remove(FoldedKey(position_or_key.text()));
  else if (const auto position = position_of(position_or_key))
    removed = books_.remove_at(*position);
  if (!removed) throw_no_such_item();
}

LinkedBooks::Books::Pass LinkedBooks::NewEnum() const {
  Procedure proc("LinkedBooks", "NewEnum");
  return Books::Pass(books_);
}

void LinkedBooks::CloseBooks() {
  Procedure proc("LinkedBooks", "CloseBooks");
  for_each([](LinkedBook& book) { book.CloseBook(); });
}

Ref<LinkedBook> LinkedBooks::find(std::string_view key) const {
  return Ref<LinkedBook>(books_.find(FoldedKey(key)));
}

}  // namespace qto
