#pragma once

#include "qto/host/chart.hpp"
#include "qto/host/pivot_table.hpp"
#include "qto/host/range.hpp"
#include "qto/hosts/late_bound/proxy.hpp"

namespace qto::late_bound {

class SeriesProxy final : public ProxyOf<host::Series> {
 public:
  using ProxyOf::ProxyOf;
  std::string Name() const override { return text(HostMember::Name); }
  std::string Formula() const override { return text(HostMember::Formula); }
  std::string FormulaLocal() const override { return text(HostMember::FormulaLocal); }
  std::string FormulaR1C1Local() const override { return text(HostMember::FormulaR1C1Local); }
  std::int32_t ChartType() const override { return number(HostMember::ChartType); }
  void Select() override { call(HostMember::Select); }
};

class ChartProxy final : public ProxyOf<host::Chart> {
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
  std::vector<Ref<host::Series>> SeriesCollection() const override;
  void SelectChartArea() override;
};

class ChartObjectProxy final : public ProxyOf<host::ChartObject> {
 public:
  using ProxyOf::ProxyOf;
  std::string Name() const override { return text(HostMember::Name); }
  Ref<host::Chart> Chart() const override { return need<host::Chart>(HostMember::Chart, "Chart"); }
  void Activate() override { call(HostMember::Activate); }
};

class PivotTableProxy final : public ProxyOf<host::PivotTable> {
 public:
  using ProxyOf::ProxyOf;
  std::string Name() const override { return text(HostMember::Name); }
  Ref<host::Range> TableRange2() const override {
    return need<host::Range>(HostMember::TableRange2, "Range");
  }
  /// The pieces of an array stand one after the other.
  std::string SourceData() const override;
};

}  // namespace qto::late_bound
