#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "qto/hosts/embedded/book/book.hpp"
#include "tests/conformance/perturbation/chance.hpp"

namespace qto::embedded::conformance {

/// What a cell is changed to.
enum class Change : std::uint8_t { number, error, text, boolean, blank, any };

/// The cells of open books whose values can be changed below everything that would calculate: all
/// stored ones, and blank ones in and around what is used. Each has two values, the one it came
/// with and a drawn one, and can be switched between them. The books get all of theirs back in the
/// end; nothing else may edit them meanwhile.
class ChangeableCells {
 public:
  using Index = std::uint32_t;

  ChangeableCells(const std::vector<Book*>& books, Chance& chance);
  ~ChangeableCells();
  ChangeableCells(const ChangeableCells&) = delete;
  ChangeableCells& operator=(const ChangeableCells&) = delete;

  Index size() const noexcept { return static_cast<Index>(places_.size()); }
  const CellAddress& place(Index cell) const noexcept { return places_[cell]; }
  std::optional<Index> find(const Sheet& sheet, CellPos pos) const;
  /// Appends the cells that lie in a block.
  void find(const Sheet& sheet, const Rect& block, std::vector<Index>& found) const;

  /// Appends the cells beyond what was used of their sheets.
  void find_unused(std::vector<Index>& found) const;

  /// Draws another value for every cell, or for one; those that hold it get it when next changed.
  void draw(Change change);
  void draw(Index cell, Change change);
  void change(Index cell) { store(cell, drawn_[cell]); }
  void restore(Index cell) { store(cell, original_[cell]); }
  void change_all();
  void restore_all();

  const Cell& original(Index cell) const noexcept { return original_[cell]; }
  const Cell& drawn(Index cell) const noexcept { return drawn_[cell]; }
  std::string name_of(Index cell) const;

 private:
  struct OfSheet {
    std::unordered_map<std::uint64_t, Index> index;
    Rect bounds, used;
  };

  void add(Sheet& sheet, CellPos pos, const Cell& cell, bool stored);
  void add_blanks(Sheet& sheet);
  void add_block_of_blanks(Sheet& sheet, const Rect& block);
  void store(Index cell, const Cell& value) {
    places_[cell].sheet->cells.touch(places_[cell].pos) = value;
  }

  Chance& chance_;
  std::unordered_map<const Sheet*, OfSheet> sheets_;
  std::vector<CellAddress> places_;
  std::vector<Cell> original_, drawn_;
  std::vector<bool> stored_;  // in the book before
};

}  // namespace qto::embedded::conformance
