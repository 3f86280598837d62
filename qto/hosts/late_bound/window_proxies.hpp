#pragma once

#include "qto/host/range.hpp"
#include "qto/host/window.hpp"
#include "qto/host/worksheet_function.hpp"
#include "qto/hosts/late_bound/proxy.hpp"

namespace qto::late_bound {

class PaneProxy final : public ProxyOf<host::Pane> {
 public:
  using ProxyOf::ProxyOf;
  Ref<host::Range> VisibleRange() const override {
    return need<host::Range>(HostMember::VisibleRange, "Range");
  }
  void SmallScroll(std::int32_t up, std::int32_t to_left) override {
    call(HostMember::SmallScroll, {std::nullopt, Variant(up), std::nullopt, Variant(to_left)});
  }
};

class WindowProxy final : public ProxyOf<host::Window> {
 public:
  using ProxyOf::ProxyOf;
  Ref<host::Pane> ActivePane() const override {
    return need<host::Pane>(HostMember::ActivePane, "Pane");
  }
  std::int32_t ScrollRow() const override { return number(HostMember::ScrollRow); }
  std::int32_t ScrollColumn() const override { return number(HostMember::ScrollColumn); }
  void put_ScrollRow(std::int32_t row) override { put(HostMember::ScrollRow, Variant(row)); }
  void put_ScrollColumn(std::int32_t column) override {
    put(HostMember::ScrollColumn, Variant(column));
  }
};

class WorksheetFunctionProxy final : public ProxyOf<host::WorksheetFunction> {
 public:
  using ProxyOf::ProxyOf;
  std::optional<double> Match(const Variant& lookup_value, const Ref<host::Range>& lookup_range,
                              std::optional<double> match_type) override;
  double CountIf(const Ref<host::Range>& range, const Variant& criteria) override;
};

}  // namespace qto::late_bound
