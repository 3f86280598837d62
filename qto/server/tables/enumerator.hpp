#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "qto/automation/object.hpp"
#include "qto/automation/variant.hpp"

namespace qto::server {

/// What a collection's NewEnum answers: a walk over its items.
class Enumerator : public Object {
 public:
  std::string_view TypeName() const noexcept override { return "Enumerator"; }
  /// Puts the next item into `item`; false at the end.
  virtual bool next(Variant& item) = 0;
  /// Begins again.
  virtual void reset() = 0;
  /// Another walk that stands at the same place.
  virtual Ref<Enumerator> clone() const = 0;
};

/// A walk over a collection that has NewEnum() with a Pass; holds the collection.
template <class Collection>
class CollectionEnumerator final : public Enumerator {
 public:
  explicit CollectionEnumerator(Ref<Collection> source) : source_(std::move(source)) { reset(); }
  bool next(Variant& item) override {
    auto* found = pass_->next();
    if (!found) return false;
    ++done_;
    item = Variant(Ref<Object>(found));
    return true;
  }
  void reset() override {
    pass_.emplace(source_->NewEnum());
    done_ = 0;
  }
  Ref<Enumerator> clone() const override {
    auto copy = make_ref<CollectionEnumerator>(source_);
    Variant skipped;
    for (std::size_t i = 0; i < done_; ++i) copy->next(skipped);
    return copy;
  }

 private:
  Ref<Collection> source_;
  std::optional<decltype(std::declval<Collection&>().NewEnum())> pass_;
  std::size_t done_ = 0;
};

template <class Collection>
Ref<Enumerator> enumerate(Collection& source) {
  return make_ref<CollectionEnumerator<Collection>>(Ref<Collection>(&source));
}

/// A walk over items that were gathered beforehand.
class ListEnumerator final : public Enumerator {
 public:
  explicit ListEnumerator(std::vector<Variant> items) : items_(std::move(items)) {}
  bool next(Variant& item) override {
    if (next_ == items_.size()) return false;
    item = items_[next_++];
    return true;
  }
  void reset() override { next_ = 0; }
  Ref<Enumerator> clone() const override {
    auto copy = make_ref<ListEnumerator>(items_);
    copy->next_ = next_;
    return copy;
  }

 private:
  std::vector<Variant> items_;
  std::size_t next_ = 0;
};

}  // namespace qto::server
