#pragma once

#include "qto/host/range.hpp"
#include "qto/hosts/late_bound/worksheet_proxy.hpp"

namespace qto::late_bound {

/// A block of cells. One that was made from its place alone is reached in the application when it
/// is first needed there.
class RangeProxy final : public ProxyOf<host::Range> {
 public:
  /// Asks where the range lies.
  RangeProxy(Ref<Session> session, Remote remote);
  RangeProxy(Ref<Session> session, Ref<WorksheetProxy> sheet, const Rect& block);

  Ref<host::HostObject> Parent() const override { return Worksheet(); }
  bool exists() const noexcept override;
  Ref<host::Worksheet> Worksheet() const override;
  Rect block() const override;
  int AreasCount() const override;
  std::int64_t CellsCount() const override;
  Ref<host::Range> Cells(std::int32_t row, std::int32_t column) const override;
  Ref<host::Range> Rows(std::int32_t k) const override;
  Ref<host::Range> Columns(std::int32_t k) const override;
  std::string Address(bool row_absolute, bool column_absolute, std::int32_t style,
                      bool external) const override;
  std::string AddressLocal(bool row_absolute, bool column_absolute, std::int32_t style,
                           bool external) const override;
  bool HasFormula() const override;
  std::string Formula() const override { return text(HostMember::Formula); }
  std::string FormulaLocal() const override { return text(HostMember::FormulaLocal); }
  std::string FormulaR1C1Local() const override { return text(HostMember::FormulaR1C1Local); }
  Variant value() const override { return get(HostMember::Value); }
  std::string Text() const override;
  Ref<host::DefinedName> find_name() const override;
  Ref<host::Range> End(std::int32_t direction) const override;
  Ref<host::Range> EntireRow() const override;
  Ref<host::Range> EntireColumn() const override;
  std::optional<bool> Hidden() const override;
  void put_Hidden(bool hidden) override { put(HostMember::Hidden, Variant(hidden)); }
  void Select() override { call(HostMember::Select); }
  void put_value(const Variant& value) override { put(HostMember::Value, value); }
  void put_Formula(std::string_view formula) override {
    put(HostMember::Formula, Variant(formula));
  }
  void put_FormulaArray(std::string_view formula) override {
    put(HostMember::FormulaArray, Variant(formula));
  }
  std::string NumberFormat() const override { return text(HostMember::NumberFormat); }
  void put_NumberFormat(std::string_view code) override {
    put(HostMember::NumberFormat, Variant(code));
  }

 private:
  const Remote& remote() const override;
  Ref<host::Application> application() const override;
  /// Reads where the range lies now: cells may have been inserted before it.
  void read_place() const;
  void refresh_place() const;
  Ref<host::Range> at(const Rect& block) const { return Worksheet()->Block(block); }

  mutable Ref<host::Worksheet> sheet_;
  Ref<WorksheetProxy> reached_from_;  // null for a range that the application answered
  mutable Rect block_;
  mutable std::int32_t areas_ = 1;
};

}  // namespace qto::late_bound
