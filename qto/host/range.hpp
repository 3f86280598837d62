#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "qto/automation/address.hpp"
#include "qto/automation/variant.hpp"
#include "qto/host/constants.hpp"
#include "qto/host/host_object.hpp"

namespace qto::host {

class DefinedName;
class Worksheet;

/// One cell or a rectangular block of cells of a worksheet.
class Range : public HostObject {
 public:
  std::string_view TypeName() const noexcept final { return "Range"; }

  virtual Ref<host::Worksheet> Worksheet() const = 0;
  /// Where the block lies on its sheet (of several areas the first). Like every ordinary call it
  /// throws when the application fails.
  virtual Rect block() const = 0;
  /// Number of separate blocks; 1 for an ordinary range.
  virtual int AreasCount() const { return 1; }
  virtual std::int64_t CellsCount() const { return block().cells(); }
  std::int32_t Row() const { return block().first.row; }
  std::int32_t Column() const { return block().first.column; }
  std::int32_t RowsCount() const { return block().rows(); }
  std::int32_t ColumnsCount() const { return block().columns(); }
  /// A cell counted from the top left of the range, which it may lie outside of.
  virtual Ref<Range> Cells(std::int32_t row, std::int32_t column) const = 0;
  /// One row or column of the range, counted from 1.
  virtual Ref<Range> Rows(std::int32_t k) const = 0;
  virtual Ref<Range> Columns(std::int32_t k) const = 0;

  /// The address text; External puts [book]sheet! before it.
  virtual std::string Address(bool row_absolute = true, bool column_absolute = true,
                              std::int32_t style = xlA1, bool external = false) const = 0;
  /// The same in the user's language.
  virtual std::string AddressLocal(bool row_absolute = true, bool column_absolute = true,
                                   std::int32_t style = xlA1, bool external = false) const = 0;

  virtual bool HasFormula() const = 0;
  /// Of a cell: its formula, "=" first, or its constant as text, "" when empty. Throws for a hidden
  /// formula on a protected sheet.
  virtual std::string Formula() const = 0;
  virtual std::string FormulaLocal() const = 0;
  virtual std::string FormulaR1C1Local() const = 0;
  /// The value of a cell, or an array for a block.
  virtual Variant value() const = 0;
  /// What a cell shows; "" for a block of several cells.
  virtual std::string Text() const = 0;
  /// Probe: the name that refers to exactly this range.
  virtual Ref<DefinedName> find_name() const = 0;
  /// The edge of the data block in a direction.
  virtual Ref<Range> End(std::int32_t direction) const = 0;

  virtual Ref<Range> EntireRow() const = 0;
  virtual Ref<Range> EntireColumn() const = 0;
  /// Of entire rows or columns: hidden or not, nothing when only some are.
  virtual std::optional<bool> Hidden() const = 0;
  virtual void put_Hidden(bool hidden) = 0;
  virtual void Select() = 0;

  /// Writes a constant into every cell of the range; Empty clears.
  virtual void put_value(const Variant& value) = 0;
  /// Writes a formula ("=" first; references as in the first cell, moving with the others) or a
  /// constant as typed.
  virtual void put_Formula(std::string_view formula) = 0;
  /// Writes one array formula over the block.
  virtual void put_FormulaArray(std::string_view formula) = 0;
  virtual std::string NumberFormat() const = 0;
  virtual void put_NumberFormat(std::string_view code) = 0;
};

}  // namespace qto::host
