#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qto/hosts/embedded/book/defined_name.hpp"
#include "qto/hosts/embedded/book/external_book.hpp"
#include "qto/hosts/embedded/book/formula_record.hpp"
#include "qto/hosts/embedded/book/sheet.hpp"
#include "qto/hosts/embedded/book/style_table.hpp"
#include "qto/hosts/embedded/book/table.hpp"
#include "qto/hosts/embedded/book/text_pool.hpp"

namespace qto::embedded {

/// A cell of a book: its sheet and its position there.
struct CellAddress {
  Sheet* sheet = nullptr;
  CellPos pos;
  bool operator==(const CellAddress&) const = default;
};

/// How circular formulas are calculated.
struct Iteration {
  bool on = false;        ///< off: their cells are 0
  int count = 100;        ///< rounds at most
  double change = 0.001;  ///< a round in which every number changes by less is the last
};

/// A workbook in memory: sheets, names, tables, styles, texts and formulas.
class Book {
 public:
  Book() = default;
  Book(const Book&) = delete;
  Book& operator=(const Book&) = delete;

  /// File name and folder (without trailing separator); the folder is "" for a book never saved.
  std::string name;
  std::string path;
  bool date1904 = false;
  bool accept_labels = false;
  Iteration iteration;
  SheetProtection structure;  ///< against adding, removing, renaming and hiding sheets
  /// Position, from 0, of the sheet that was in front when the file was saved.
  std::size_t active_sheet = 0;
  TextPool texts;
  StyleTable styles;
  NameTable names;
  std::vector<ExternalBook> externals;

  /// Appends a sheet. The name must be free (find_sheet gives null).
  Sheet& add_sheet(std::string sheet_name, SheetKind kind = SheetKind::worksheet);
  void remove_sheet(Sheet& sheet);
  void rename_sheet(Sheet& sheet, std::string new_name);
  /// By name without regard to letter case, one hash probe; null when there is none.
  Sheet* find_sheet(std::string_view sheet_name) const;
  /// In tab order; positions count from 0 here.
  const std::vector<std::unique_ptr<Sheet>>& sheets() const noexcept { return sheets_; }
  /// Position of a sheet from 0.
  int index_of(const Sheet& sheet) const noexcept;

  Table& add_table(Table table);
  /// By name without regard to letter case; null when there is none.
  const Table* find_table(std::string_view table_name) const;
  /// The table that a cell lies in, or null.
  const Table* table_at(const Sheet& sheet, CellPos pos) const noexcept;
  const std::vector<std::unique_ptr<Table>>& tables() const noexcept { return tables_; }

  FormulaId add_formula(FormulaRecord record);
  const FormulaRecord& formula(FormulaId id) const noexcept { return formulas_[id]; }
  std::size_t formula_records() const noexcept { return formulas_.size() - 1; }

  /// Tells that a cell's value or formula was edited: what depends on it is no longer up to date.
  void cell_changed(const CellAddress& cell);
  /// Tells that names, tables or sheets changed, or that no cached values exist: everything must be
  /// calculated.
  void everything_changed();
  /// Rises with every change; what was derived from the book at one serial holds until the next.
  std::uint64_t serial() const noexcept { return serial_; }

  /// What waits for the next calculation.
  bool all_pending() const noexcept { return all_pending_; }
  const std::vector<CellAddress>& pending() const noexcept { return pending_; }
  bool needs_calculation() const noexcept { return all_pending_ || !pending_.empty(); }
  void calculation_done() noexcept;

  /// Days between the book's serial numbers and those of automation dates.
  double date_shift() const noexcept { return date1904 ? 1462 : 0; }
  /// The value of a stored cell as a variant; dates are numbers whose format shows a date.
  Variant value_of(const Cell& cell) const;
  /// Stores a value (array and object values are not accepted and leave the cell empty).
  void store(Cell& cell, const Variant& value);

 private:
  std::vector<std::unique_ptr<Sheet>> sheets_;
  std::unordered_map<std::string, Sheet*> sheet_by_name_;  // folded
  std::vector<std::unique_ptr<Table>> tables_;
  std::unordered_map<std::string, Table*> table_by_name_;  // folded
  std::vector<FormulaRecord> formulas_{1};                 // entry 0 stands for "none"
  std::vector<CellAddress> pending_;
  bool all_pending_ = false;
  std::uint64_t serial_ = 1;
};

}  // namespace qto::embedded
