#pragma once

#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <cstdint>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/hosts/libreoffice/office/uno_text.hpp"

namespace qto::libreoffice {

namespace uno = com::sun::star::uno;
namespace sheet = com::sun::star::sheet;

enum class CellKind : std::uint8_t {
  empty,
  number,
  formula_number,  ///< whether it is a date or a Boolean is asked when it is wanted
  text,
  boolean,
  date,
  error,  ///< `number` is the ErrorValue
};

/// A cell as it was when its sheet was read.
struct CellRecord {
  double number = 0;
  OUString text;
  OUString formula;  ///< as the suite shows it, "=" first; "" for a constant
  CellKind kind = CellKind::empty;
  bool in_array() const noexcept { return formula.startsWith("{"); }
};

/// All cells of a sheet, read at once: one call for a block costs what a few calls for cells do.
class Cells {
 public:
  explicit Cells(const uno::Reference<sheet::XSpreadsheet>& sheet);

  /// Null for an empty cell.
  const CellRecord* find(CellPos pos) const noexcept;
  CellRecord* find(CellPos pos) noexcept {
    return const_cast<CellRecord*>(static_cast<const Cells*>(this)->find(pos));
  }
  /// The block that holds every cell; A1 when there is none.
  Rect used() const noexcept { return used_; }
  /// Calls visit(position, record) for the cells of a block, column by column.
  template <class Visit>
  void for_each(const Rect& block, Visit&& visit) const {
    for (std::int32_t c = block.first.column; c <= block.last.column && c <= last_column(); ++c) {
      const Column& column = columns_[c];
      for (std::size_t i = column.lower_bound(block.first.row);
           i < column.rows.size() && column.rows[i] <= block.last.row; ++i)
        visit(CellPos{column.rows[i], c}, column.records[i]);
    }
  }

 private:
  struct Column {
    std::vector<std::int32_t> rows;  ///< in order
    std::vector<CellRecord> records;
    std::size_t lower_bound(std::int32_t row) const noexcept;
  };
  std::int32_t last_column() const noexcept {
    return static_cast<std::int32_t>(columns_.size()) - 1;
  }
  void add(CellPos pos, CellRecord record);
  void put_in_order();
  void read_values(const uno::Reference<sheet::XSpreadsheet>& sheet);
  void read_formulas(const uno::Reference<sheet::XSpreadsheet>& sheet);
  void mark_dates(const uno::Reference<sheet::XSpreadsheet>& sheet);

  std::vector<Column> columns_;  ///< by number, from 1
  Rect used_;
};

/// The position of the cells in which texts are evaluated: the last of the grid.
inline constexpr CellPos scratch_cell{max_rows, max_columns};

}  // namespace qto::libreoffice
