#pragma once

#include "qto/host/worksheet.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"

namespace qto::embedded {

/// The handle of a worksheet; there is one per sheet while somebody holds it.
enum class EvaluationMode : std::uint8_t;
class WorksheetObject final : public host::Worksheet {
 public:
  WorksheetObject(Ref<WorkbookObject> workbook, SheetSlot& slot);
  ~WorksheetObject() override;

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return slot_->sheet != nullptr; }
  std::string Name() const override;
  int Index() const override;
  Ref<host::Workbook> Workbook() const override;
  std::int32_t Visible() const override;
  void put_Visible(std::int32_t visibility) override;
  void Unprotect(std::string_view password) override;
  void Select() override;
  void Activate() override;

  Ref<host::Range> find_range(std::string_view address) const override;
  Ref<host::Range> Range(std::string_view address) const override;
  bool find_block(std::string_view address, Rect& block) const override;
  Ref<host::Range> Block(const Rect& block) const override;
  Ref<host::Range> Cells(std::int32_t row, std::int32_t column) const override;
  Ref<host::Range> UsedRange() const override;

  Ref<host::DefinedName> find_name(std::string_view name) const override;
  Ref<host::DefinedName> Names(std::string_view name) const override;
  Ref<host::DefinedName> AddName(std::string_view name, std::string_view refers_to) override;

  Variant Evaluate(std::string_view text) const override;
  Variant value_in_cell(CellPos cell, std::string_view piece) const override;
  Variant elements_in_cell(CellPos cell, std::string_view piece, bool over_ranges) const override;
  Ref<host::Range> range_in_cell(CellPos cell, std::string_view piece) const override;
  Ref<host::Range> CircularReference() const override;
  std::vector<Ref<host::PivotTable>> PivotTables() const override;
  std::vector<Ref<host::ChartObject>> ChartObjects() const override;
  Ref<host::ChartObject> ChartObjects(std::string_view name) const override;

  std::uint64_t IdentityStamp() const noexcept override { return slot_->sheet ? slot_->stamp : 0; }
  void append_cell_formula(CellPos pos, std::string& out) const override;
  Variant cell_value(CellPos pos) const override;
  bool cell_has_formula(CellPos pos) const override;
  host::FormulaPattern formula_pattern(CellPos pos) const override;

  /// Null once the sheet is gone.
  embedded::Sheet* find_sheet() const noexcept { return slot_->sheet; }
  /// The sheet; throws when it is gone.
  embedded::Sheet& sheet() const;
  /// The book that the sheet belongs to; throws when the sheet is gone.
  OpenBook& open() const;
  const Ref<SheetSlot>& slot() const noexcept { return slot_; }
  const Ref<WorkbookObject>& workbook() const noexcept { return workbook_; }

 private:
  Ref<host::Application> application() const override;
  Variant evaluate_piece(CellPos cell, std::string_view piece, EvaluationMode ordinary) const;

  Ref<WorkbookObject> workbook_;
  Ref<SheetSlot> slot_;
};

}  // namespace qto::embedded
