#pragma once

#include "qto/host/workbook.hpp"
#include "qto/host/worksheet.hpp"
#include "qto/hosts/late_bound/proxy.hpp"

namespace qto::late_bound {

class WorksheetProxy final : public ProxyOf<host::Worksheet> {
 public:
  using ProxyOf::ProxyOf;
  std::string Name() const override { return text(HostMember::Name); }
  int Index() const override { return number(HostMember::Index); }
  Ref<host::Workbook> Workbook() const override;
  std::int32_t Visible() const override { return number(HostMember::Visible); }
  void put_Visible(std::int32_t visibility) override {
    put(HostMember::Visible, Variant(visibility));
  }
  void Unprotect(std::string_view password) override {
    call(HostMember::Unprotect, {Variant(password)});
  }
  void Select() override { call(HostMember::Select); }
  void Activate() override { call(HostMember::Activate); }

  Ref<host::Range> find_range(std::string_view address) const override;
  Ref<host::Range> Range(std::string_view address) const override;
  /// Addresses are read here: the application would also take names.
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
  /// Stands for this proxy under the names that it has now.
  std::uint64_t IdentityStamp() const noexcept override;
  void append_cell_formula(CellPos pos, std::string& out) const override;
  Variant cell_value(CellPos pos) const override;
  bool cell_has_formula(CellPos pos) const override;

  /// The application's range of a block.
  Remote reach(const Rect& block) const;

 private:
  Remote cell(CellPos pos) const;
  CellPos last_cell() const;
  bool is_array_formula(CellPos pos) const;
  /// What an ordinary formula sees of a range from its cell; null: nothing.
  Ref<host::Range> seen_from(CellPos pos, const Ref<host::Range>& range) const;
  const Remote& names() const { return kept_part(names_, HostMember::Names, "Names"); }

  mutable Remote names_;
  mutable Ref<host::Workbook> workbook_;
  mutable CellPos last_cell_{0, 0};
};

}  // namespace qto::late_bound
