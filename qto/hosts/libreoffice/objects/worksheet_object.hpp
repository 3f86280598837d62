#pragma once

#include "qto/host/worksheet.hpp"
#include "qto/hosts/libreoffice/document/evaluation.hpp"
#include "qto/hosts/libreoffice/objects/workbook_object.hpp"

namespace qto::libreoffice {

/// The handle of a worksheet; there is one per sheet while somebody holds it.
class WorksheetObject final : public host::Worksheet {
 public:
  WorksheetObject(Ref<WorkbookObject> workbook, SheetSlot& slot)
      : workbook_(std::move(workbook)), slot_(&slot) {}
  ~WorksheetObject() override { slot_->handle = nullptr; }

  Ref<host::HostObject> Parent() const override { return Workbook(); }
  bool exists() const noexcept override { return slot_->document != nullptr; }
  std::string Name() const override { return slot().name; }
  int Index() const override { return slot().position + 1; }
  Ref<host::Workbook> Workbook() const override;
  std::int32_t Visible() const override { return slot().visibility; }
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
  Ref<host::Range> range_in_cell(CellPos cell, std::string_view piece) const override;
  Ref<host::Range> CircularReference() const override;
  std::vector<Ref<host::PivotTable>> PivotTables() const override;
  std::vector<Ref<host::ChartObject>> ChartObjects() const override;
  Ref<host::ChartObject> ChartObjects(std::string_view name) const override;

  std::uint64_t IdentityStamp() const noexcept override { return slot_->stamp; }
  void append_cell_formula(CellPos pos, std::string& out) const override;
  Variant cell_value(CellPos pos) const override;
  bool cell_has_formula(CellPos pos) const override;

  /// The sheet; throws when it is gone.
  SheetSlot& slot() const;
  Document& document() const { return *slot().document; }
  ApplicationObject& owner() const noexcept { return *workbook_->owner(); }
  const Ref<WorkbookObject>& workbook() const noexcept { return workbook_; }
  Ref<WorksheetObject> self() const {
    return Ref<WorksheetObject>(const_cast<WorksheetObject*>(this));
  }

 private:
  Ref<host::Application> application() const override;
  Evaluated evaluate_piece(CellPos cell, std::string_view piece) const;
  /// The range of an evaluated reference, or null.
  Ref<host::Range> range_of(const Evaluated& result) const;
  bool in_array(CellPos cell) const;

  Ref<WorkbookObject> workbook_;
  Ref<SheetSlot> slot_;
};

}  // namespace qto::libreoffice
