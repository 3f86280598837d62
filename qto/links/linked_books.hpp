#pragma once

#include <string_view>

#include "qto/automation/folded_key.hpp"
#include "qto/automation/keyed_collection.hpp"
#include "qto/automation/object.hpp"
#include "qto/automation/variant.hpp"
#include "qto/links/linked_book.hpp"

namespace qto {

/// Records of linked workbooks in insertion order, each under the FullNameWithPath that it had when
/// it was added (compared without regard to letter case).
class LinkedBooks : public Object {
 public:
  std::string_view TypeName() const noexcept override { return "LinkedBooks"; }

  /// Fails (CollectionError) when the key is present.
  void AddExisting(const Ref<LinkedBook>& book);
  std::int32_t Count() const;
  /// By position from 1 or by key; fails (CollectionError) when there is none.
  Ref<LinkedBook> Item(const Variant& position_or_key) const;
  void Remove(const Variant& position_or_key);
  /// Calls CloseBook on every record, in order.
  void CloseBooks();

  /// Probe by key: null when there is none.
  Ref<LinkedBook> find(std::string_view key) const;

  using Books = KeyedCollection<LinkedBook, FoldedKey>;
  /// A walk over the records in order. It does not hold the collection.
  Books::Pass NewEnum() const;
  /// for (LinkedBook& book : *list); the list is held by the caller.
  PassIterator<LinkedBook, Books::Pass> begin() const {
    return PassIterator<LinkedBook, Books::Pass>(NewEnum());
  }
  std::default_sentinel_t end() const noexcept { return {}; }
  /// Calls visit(LinkedBook&) for every record in order.
  template <class Visit>
  void for_each(Visit&& visit) const {
    Books::Pass pass = NewEnum();
    while (LinkedBook* book = pass.next()) visit(*book);
  }

 private:
  mutable Books books_;
};

}  // namespace qto
