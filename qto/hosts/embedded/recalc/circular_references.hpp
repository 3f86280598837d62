#pragma once

#include <functional>
#include <optional>
#include <unordered_map>

#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// The cells of a book that lie on a cycle of references: a cell that reads itself, directly or
/// through other cells, names, blocks or sheets. A cell that only reads from a cycle is not on it.
/// What a formula reads is what it reads with the present values: not the branches that it does not
/// take, and of the blocks in which INDEX and the lookup functions find their result one cell. A
/// book that iterates has none. True for the state of the book that it was made from.
class CircularReferences {
 public:
  /// `calculate` is called before values are looked at; it may be empty where they are up to date.
  explicit CircularReferences(const Book& book, const std::function<void()>& calculate = {});
  /// The first such cell of a sheet, row by row; nothing when it has none.
  std::optional<CellPos> first_on(const Sheet& sheet) const;
  bool any() const noexcept { return !first_.empty(); }

 private:
  std::unordered_map<const Sheet*, CellPos> first_;
};

/// The circular references of the state that a book is in; searched once per state.
class CircularReferenceCache {
 public:
  const CircularReferences& of(const Book& book, const std::function<void()>& calculate = {});
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
