#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "qto/automation/ref.hpp"

namespace qto {

/// Items in insertion order under unique keys; positions count from 1. `Key` needs hash() and ==.
///
/// Removing leaves a hole, so that a Pass over the collection neither skips nor repeats an item,
/// whatever is removed or appended meanwhile; holes are closed when no pass is under way. Small
/// collections are searched item by item, larger ones through an index of 8 bytes an item.
template <class T, class Key>
class KeyedCollection {
 public:
  KeyedCollection() = default;
  KeyedCollection(const KeyedCollection&) = delete;
  KeyedCollection& operator=(const KeyedCollection&) = delete;

  std::size_t count() const noexcept { return slots_.size() - holes_; }

  /// Appends the item; false (nothing changed) when the key is present.
  bool add(Key key, Ref<T> item) {
    if (find_slot(key) != none) return false;
    slots_.push_back({std::move(key), std::move(item)});
    try {
      if (index_)
        index_->insert(slots_, slots_.size() - 1);
      else if (slots_.size() > linear_limit)
        rebuild_index();
    } catch (...) {
      slots_.pop_back();  // an item that cannot be found was not added
      throw;
    }
    return true;
  }

  /// The item under a key, or null.
  T* find(const Key& key) const noexcept {
    const std::size_t slot = find_slot(key);
    return slot == none ? nullptr : slots_[slot].item.get();
  }

  /// The item at a position from 1, or null.
  T* at(std::size_t position) {
    const std::size_t slot = slot_at(position);
    return slot == none ? nullptr : slots_[slot].item.get();
  }

  /// Number of places, holes included.
  std::size_t places() const noexcept { return slots_.size(); }
  /// From now on items keep their places: holes stay holes.
  void pin_places() noexcept { ++passes_; }

  /// Removes an item; false when there is none.
  bool remove(const Key& key) { return remove_slot(find_slot(key)); }
  bool remove_at(std::size_t position) { return remove_slot(slot_at(position)); }

  /// Exchanges all items. Passes under way on either go on over the new ones.
  void swap(KeyedCollection& other) noexcept {
    slots_.swap(other.slots_);
    index_.swap(other.index_);
    std::swap(holes_, other.holes_);
  }

  /// A walk over the items that stays right while the collection changes. It keeps no reference to
  /// the collection's owner.
  class Pass {
   public:
    explicit Pass(KeyedCollection& collection) : collection_(&collection) { ++collection.passes_; }
    Pass(Pass&& other) noexcept
        : collection_(std::exchange(other.collection_, nullptr)), next_(other.next_) {}
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;
    Pass& operator=(Pass&&) = delete;
    ~Pass() {
      if (collection_) --collection_->passes_;
    }
    /// The next item, or null at the end; items appended meanwhile are still reached.
    T* next() noexcept {
      while (next_ < collection_->slots_.size()) {
        if (T* item = collection_->slots_[next_++].item.get()) return item;
      }
      return nullptr;
    }
    /// The place, from 0, that comes next.
    std::size_t place() const noexcept { return next_; }

   private:
    KeyedCollection* collection_;
    std::size_t next_ = 0;
  };

 private:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);
  static constexpr std::size_t linear_limit = 8;
  struct Slot {
    Key key;
    Ref<T> item;  // null: a hole
  };
  using Slots = std::vector<Slot>;

  /// Open addressing over slot numbers, each with 32 bits of its hash.
  class Index {
   public:
    explicit Index(std::size_t items) {
      std::size_t size = 16;
      while (size * 2 < items * 3) size *= 2;
      entries_.resize(size * 2);
    }
    void insert(const Slots& slots, std::size_t slot) {
      if ((used_ + 1) * 3 > entries_.size() * 2) return grow(slots);
      place(slots[slot].key.hash(), static_cast<std::uint32_t>(slot));
    }
    std::size_t find(const Slots& slots, const Key& key) const noexcept {
      const std::uint64_t hash = key.hash();
      const std::size_t mask = entries_.size() - 1;
      for (std::size_t i = hash & mask; entries_[i].slot_plus_one; i = (i + 1) & mask) {
        const Entry& entry = entries_[i];
        if (entry.hash != static_cast<std::uint32_t>(hash >> 32)) continue;
        const Slot& slot = slots[entry.slot_plus_one - 1];
        if (slot.item && slot.key == key) return entry.slot_plus_one - 1;
      }
      return none;
    }

   private:
    struct Entry {
      std::uint32_t hash = 0;
      std::uint32_t slot_plus_one = 0;  // 0: free
    };
    void place(std::uint64_t hash, std::uint32_t slot) {
      const std::size_t mask = entries_.size() - 1;
      std::size_t i = hash & mask;
      while (entries_[i].slot_plus_one) i = (i + 1) & mask;
      entries_[i] = {static_cast<std::uint32_t>(hash >> 32), slot + 1};
      ++used_;
    }
    void grow(const Slots& slots) {
      entries_ = std::vector<Entry>(entries_.size() * 2);
      used_ = 0;
      for (std::size_t slot = 0; slot < slots.size(); ++slot)
        if (slots[slot].item) place(slots[slot].key.hash(), static_cast<std::uint32_t>(slot));
    }
    std::vector<Entry> entries_;
    std::size_t used_ = 0;
  };

  std::size_t find_slot(const Key& key) const noexcept {
    if (index_) return index_->find(slots_, key);
    for (std::size_t slot = 0; slot < slots_.size(); ++slot)
      if (slots_[slot].item && slots_[slot].key == key) return slot;
    return none;
  }

  std::size_t slot_at(std::size_t position) {
    if (position == 0 || position > count()) return none;
    if (holes_ && passes_ == 0) close_holes();
    if (!holes_) return position - 1;
    std::size_t slot = 0;
    for (std::size_t seen = 0;; ++slot)
      if (slots_[slot].item && ++seen == position) return slot;
  }

  bool remove_slot(std::size_t slot) {
    if (slot == none) return false;
    slots_[slot].item = nullptr;
    ++holes_;
    if (passes_ == 0 && holes_ > count() + 32) close_holes();
    return true;
  }

  void close_holes() {
    std::erase_if(slots_, [](const Slot& slot) { return !slot.item; });
    holes_ = 0;
    if (!std::exchange(index_, nullptr)) return;
    try {
      rebuild_index();
    } catch (const std::bad_alloc&) {
      // Searched item by item until there is memory for one.
    }
  }

  void rebuild_index() {
    auto index = std::make_unique<Index>(slots_.size());
    for (std::size_t slot = 0; slot < slots_.size(); ++slot) index->insert(slots_, slot);
    index_ = std::move(index);
  }

  Slots slots_;
  std::unique_ptr<Index> index_;
  std::uint32_t holes_ = 0;
  std::uint32_t passes_ = 0;
};

/// A walk as C++ loops take it; each item stays alive until the next one is asked for.
template <class T, class Pass>
class PassIterator {
 public:
  explicit PassIterator(Pass pass) : pass_(std::move(pass)), item_(pass_.next()) {}
  T& operator*() const noexcept { return *item_; }
  T* operator->() const noexcept { return item_.get(); }
  PassIterator& operator++() {
    item_ = Ref<T>(pass_.next());
    return *this;
  }
  bool operator==(std::default_sentinel_t) const noexcept { return !item_; }

 private:
  Pass pass_;
  Ref<T> item_;
};

}  // namespace qto
