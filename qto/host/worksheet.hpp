#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/automation/variant.hpp"
#include "qto/host/sheet.hpp"

namespace qto::host {

class ChartObject;
class DefinedName;
class PivotTable;
class Range;

/// One worksheet. Cells are reached as ranges or, where a million of them are read, by position.
/// What a cell's formula has in common with copies of it in other cells of its sheet.
struct FormulaPattern {
  /// The same for formulas that read the same relative to their cells; 0 when the host cannot tell.
  std::uint32_t id = 0;
  /// How many references there are, each of which moves with the cell where it has no dollars.
  std::int32_t references = 0;
};

class Worksheet : public Sheet {
 public:
  std::string_view TypeName() const noexcept final { return "Worksheet"; }

  /// Probe: the range that an address text denotes, or null. Addresses only, never names.
  virtual Ref<host::Range> find_range(std::string_view address) const = 0;
  /// Ordinary form of find_range.
  virtual Ref<host::Range> Range(std::string_view address) const = 0;
  /// Probe without making a range: the block that an address text denotes.
  virtual bool find_block(std::string_view address, Rect& block) const = 0;
  virtual Ref<host::Range> Block(const Rect& block) const = 0;
  virtual Ref<host::Range> Cells(std::int32_t row, std::int32_t column) const = 0;
  /// The block that holds every used cell; A1 for an empty sheet.
  virtual Ref<host::Range> UsedRange() const = 0;

  /// Probe: a name of this sheet.
  virtual Ref<DefinedName> find_name(std::string_view name) const = 0;
  /// Ordinary form of find_name.
  virtual Ref<DefinedName> Names(std::string_view name) const = 0;
  /// Defines or redefines a name of this sheet; `refers_to` begins with "=".
  virtual Ref<DefinedName> AddName(std::string_view name, std::string_view refers_to) = 0;

  /// The value of a formula text on this sheet, the range it refers to (an object), or an error
  /// value when the text is not valid. Of an empty text: Empty.
  virtual Variant Evaluate(std::string_view text) const = 0;
  /// The value that a piece of the formula in a cell of this sheet has there. In an ordinary
  /// formula a reference to several cells then gives the one in the formula's row or column; in an
  /// array formula it gives all. A host that knows no more answers as Evaluate does.
  virtual Variant value_in_cell(CellPos cell, std::string_view piece) const;
  /// The same with every element of an array; `over_ranges`: also of a reference to several cells,
  /// as where a function runs over all of them.
  virtual Variant elements_in_cell(CellPos cell, std::string_view piece, bool over_ranges) const;
  /// The range that such a piece denotes, or null.
  virtual Ref<host::Range> range_in_cell(CellPos cell, std::string_view piece) const;
  /// A range on a circle of references, or null.
  virtual Ref<host::Range> CircularReference() const = 0;
  virtual std::vector<Ref<PivotTable>> PivotTables() const = 0;
  virtual std::vector<Ref<ChartObject>> ChartObjects() const = 0;
  /// The chart object of that name; throws when there is none.
  virtual Ref<ChartObject> ChartObjects(std::string_view name) const = 0;

  /// A number that stands for this sheet under its present workbook path, workbook name and sheet
  /// name, never given to anything else in the process; 0 when the host cannot tell.
  virtual std::uint64_t IdentityStamp() const noexcept { return 0; }

  /// Formula, value and kind of one cell, as the range members of those names answer.
  virtual void append_cell_formula(CellPos pos, std::string& out) const = 0;
  virtual Variant cell_value(CellPos pos) const = 0;
  virtual bool cell_has_formula(CellPos pos) const = 0;
  virtual FormulaPattern formula_pattern(CellPos) const { return {}; }
};

}  // namespace qto::host
