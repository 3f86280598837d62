#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/hosts/embedded/book/cell_store.hpp"
#include "qto/hosts/embedded/book/chart.hpp"
#include "qto/hosts/embedded/book/sheet_layout.hpp"
#include "qto/hosts/embedded/book/table.hpp"

namespace qto::embedded {

class Book;

enum class SheetKind : std::uint8_t { worksheet, chart, dialog, macro };
/// As Visible gives it: -1 visible, 0 hidden, 2 very hidden.
enum class SheetVisibility : std::int32_t { visible = -1, hidden = 0, very_hidden = 2 };

/// Protection of a sheet, or of a book's structure, as a file stores it; a password is known by its
/// hash only.
struct SheetProtection {
  bool enabled = false;
  std::string algorithm;  ///< "" for the legacy 16-bit hash
  std::string hash;       ///< base64, or four hex digits for the legacy hash; "" without password
  std::string salt;       ///< base64
  std::uint32_t spins = 0;
  /// What the protection leaves to everybody.
  bool format_columns = false;
  bool format_rows = false;
};

/// The rows and columns that stay where they are while the rest of a sheet scrolls.
struct FrozenPanes {
  CellPos first;  ///< the top left one
  std::int32_t rows = 0;
  std::int32_t columns = 0;
};

/// One sheet of a book. Cells are read and written through the store; whoever edits a cell outside
/// of loading tells the book (Book::cell_changed).
class Sheet {
 public:
  Sheet(Book& book, std::string sheet_name, SheetKind sheet_kind)
      : book_(book), name(std::move(sheet_name)), kind(sheet_kind) {}
  Sheet(const Sheet&) = delete;
  Sheet& operator=(const Sheet&) = delete;

  Book& book() const noexcept { return book_; }
  bool is_worksheet() const noexcept { return kind != SheetKind::chart; }
  /// The formula that a cell shows: its own, or the array formula or data table whose block it lies
  /// in; 0 for none.
  FormulaId formula_at(CellPos pos) const noexcept;
  /// Registers an array formula or data table: small blocks store the formula in every cell, so
  /// that lookups stay one step; large ones are kept aside.
  void set_block_formula(const Rect& block, FormulaId id);
  struct FormulaBlock {
    Rect block;
    FormulaId id;
  };
  /// The array formulas that are kept aside because of their size.
  const std::vector<FormulaBlock>& large_blocks() const noexcept { return large_blocks_; }

 private:
  Book& book_;
  std::vector<FormulaBlock> large_blocks_;

 public:
  std::string name;
  SheetKind kind;
  SheetVisibility visibility = SheetVisibility::visible;
  CellStore cells;
  SheetLayout layout;
  SheetProtection protection;
  std::vector<ChartModel> charts;
  std::vector<PivotModel> pivots;
  std::vector<Rect> merges;
  /// The selected block, as the file or a client left it.
  Rect selection;
  /// The first cell of what scrolls in the window.
  CellPos scroll;
  FrozenPanes frozen;
};

}  // namespace qto::embedded
