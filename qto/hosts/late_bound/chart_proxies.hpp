#pragma once

#include "qto/host/chart.hpp"
#include "qto/host/pivot_table.hpp"
#include "qto/host/range.hpp"
#include "qto/hosts/late_bound/proxy.hpp"

namespace qto::late_bound {

class SeriesProxy final : public ProxyOf<host::Series> {
 public:
  using ProxyOf::ProxyOf;
  std::string Name() const override { return text(Member::Name); }
  std::string Formula() const override { return text(Member::Formula); }
  std::string FormulaLocal() const override { return text(Member::FormulaLocal); }
  std::string FormulaR1C1Local() const override { return text(Member::FormulaR1C1Local); }
  std::int32_t ChartType() const override { return number(Member::ChartType); }
  void Select() override { call(Member::Select); }
};

class ChartProxy final : public ProxyOf<host::Chart> {
 public:
  using ProxyOf::ProxyOf;
  std::string Name() const override { return text(Member::Name); }
  int Index() const override { return number(Member::Index); }
  Ref<host::Workbook> Workbook() const override;
  std::int32_t Visible() const override { return number(Member::Visible); }
  void put_Visible(std::int32_t visibility) override { put(Member::Visible, Variant(visibility)); }
  void Unprotect(std::string_view password) override {
    call(Member::Unprotect, {Variant(password)});
  }
  void Select() override { call(Member::Select); }
  void Activate() override { call(Member::Activate); }
  std::vector<Ref<host::Series>> SeriesCollection() const override;
  void SelectChartArea() override;
};

class ChartObjectProxy final : public ProxyOf<host::ChartObject> {
 public:
  using ProxyOf::ProxyOf;
  std::string Name() const override { return text(Member::Name); }
  Ref<host::Chart> Chart() const override { return need<host::Chart>(Member::Chart, "Chart"); }
  void Activate() override { call(Member::Activate); }
};

class PivotTableProxy final : public ProxyOf<host::PivotTable> {
 public:
  using ProxyOf::ProxyOf;
  std::string Name() const override { return text(Member::Name); }
  Ref<host::Range> TableRange2() const override {
    return need<host::Range>(Member::TableRange2, "Range");
  }
  /// The pieces of an array stand one after the other.
  std::string SourceData() const override;
};

}  // namespace qto::late_bound
