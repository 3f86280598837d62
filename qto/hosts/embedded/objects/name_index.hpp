#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// Finds the name that refers to exactly a block, in one hash probe. Derived from the book's names
/// and made anew when the book changed.
class NameIndex {
 public:
  /// The first visible one, or null. Relative names are taken as the cell `active` sees them.
  const DefinedName* find(const Book& book, const Sheet& sheet, const Rect& block, CellPos active);

 private:
  struct Entry {
    const Sheet* sheet;
    Rect block;
    int position;
  };
  struct RelativeName {
    const Sheet* sheet;
    const formula::AreaRef* area;
    int position;
  };
  void rebuild(const Book& book);
  static std::uint64_t key(const Sheet& sheet, const Rect& block) noexcept;

  std::uint64_t serial_ = 0;
  std::unordered_multimap<std::uint64_t, Entry> fixed_;
  std::vector<RelativeName> relative_;
};

}  // namespace qto::embedded
