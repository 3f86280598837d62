#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "qto/hosts/embedded/evaluate/environment.hpp"
#include "qto/hosts/embedded/evaluate/value_view.hpp"

namespace qto::embedded {

/// Where the values of a block of one column stand: equal values (texts without regard to letter
/// case) are found in one probe, from the top down. Good until a cell of the column is written.
class LookupIndex {
 public:
  explicit LookupIndex(const Area& block);

  /// An entry: a stored cell and the next one below that holds an equal value.
  using Entry = std::int32_t;
  static constexpr Entry none = -1;
  /// The topmost cell with a value equal to a number, text or Boolean.
  Entry first(const ValueView& wanted) const;
  Entry next(Entry entry) const noexcept { return entries_[entry].next; }
  /// Its row, from 0.
  std::int32_t row(Entry entry) const noexcept { return entries_[entry].row; }
  /// Some texts hold digits, so that they may read as a number.
  bool has_texts_with_digits() const noexcept { return texts_with_digits_; }

 private:
  struct Item {
    std::int32_t row;
    Entry next;
    std::uint32_t hash;
  };
  ValueView value(Entry entry) const;
  void add(std::int32_t row, const ValueView& value, std::vector<Entry>& last);
  std::size_t slot_of(std::uint32_t hash, const ValueView& value) const;

  Area block_;
  const TextPool* texts_;
  std::vector<Item> entries_;
  std::vector<Entry> slots_;  // open addressing, a power of two
  bool texts_with_digits_ = false;
};

/// The indexes of an evaluator. Looking through a column is the cheapest for once; a column that is
/// looked through again and again while nobody writes to it gets an index.
class LookupIndexes {
 public:
  LookupIndexes();
  ~LookupIndexes();
  /// The index over a block of one column, or null when it is to be looked through.
  const LookupIndex* over(const Area& block);

 private:
  struct Column {
    Area block;
    std::uint64_t revision = 0;
    std::int64_t looks = 0;
    std::uint64_t used = 0;  // when it was last asked for
    std::optional<LookupIndex> index;
  };
  Column& column_of(const Area& block);

  std::vector<Column> columns_;
  std::uint64_t clock_ = 0;
};

}  // namespace qto::embedded
