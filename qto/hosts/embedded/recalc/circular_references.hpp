#pragma once

#include <optional>
#include <unordered_map>

#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// The cells of a book that lie on a cycle of references: a cell that reads itself, directly or
/// through other cells, names, blocks or sheets. A cell that only reads from a cycle is not on it.
/// Of the blocks in which INDEX and the lookup functions find their result the cells count that
/// they read with the present values. True for the state of the book that it was made from.
class CircularReferences {
 public:
  explicit CircularReferences(const Book& book);
  /// The first such cell of a sheet, row by row; nothing when it has none.
  std::optional<CellPos> first_on(const Sheet& sheet) const;
  bool any() const noexcept { return !first_.empty(); }

 private:
  std::unordered_map<const Sheet*, CellPos> first_;
};

/// The circular references of the state that a book is in; searched once per state.
class CircularReferenceCache {
 public:
  const CircularReferences& of(const Book& book);
  /// To be called before a book goes away.
  void forget(const Book& book) { entries_.erase(&book); }

 private:
  struct Entry {
    std::uint64_t serial;
    CircularReferences references;
  };
  std::unordered_map<const Book*, Entry> entries_;
};

}  // namespace qto::embedded
