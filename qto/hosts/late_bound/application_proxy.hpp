#pragma once

#include "qto/hosts/late_bound/proxy.hpp"

namespace qto::late_bound {

class ApplicationProxy final : public ProxyOf<host::Application> {
 public:
  using ProxyOf::ProxyOf;
  Ref<host::HostObject> Parent() const override { return application(); }
  Ref<host::Workbooks> Workbooks() override;
  Ref<host::Workbook> ActiveWorkbook() override;
  Ref<host::Sheet> ActiveSheet() override;
  Ref<Object> Selection() override;
  Ref<host::Window> ActiveWindow() override;
  Ref<host::Chart> ActiveChart() override;
  std::string Caption() override { return text(HostMember::Caption); }
  std::int32_t ReferenceStyle() override { return number(HostMember::ReferenceStyle); }
  bool ScreenUpdating() override { return flag(HostMember::ScreenUpdating); }
  void put_ScreenUpdating(bool on) override { put(HostMember::ScreenUpdating, Variant(on)); }
  bool EnableEvents() override { return flag(HostMember::EnableEvents); }
  void put_EnableEvents(bool on) override { put(HostMember::EnableEvents, Variant(on)); }
  bool DisplayAlerts() override { return flag(HostMember::DisplayAlerts); }
  void put_DisplayAlerts(bool on) override { put(HostMember::DisplayAlerts, Variant(on)); }
  void Goto(const Ref<host::Range>& reference, bool scroll) override;
  Ref<host::Range> Intersect(const Ref<host::Range>& a, const Ref<host::Range>& b) override;
  std::string ConvertFormula(std::string_view formula, std::int32_t from_style,
                             std::int32_t to_style, const Ref<host::Range>& relative_to) override;
  Ref<host::WorksheetFunction> WorksheetFunction() override;
  Ref<host::DefinedName> find_name(std::string_view name) override;
  Ref<host::DefinedName> Names(std::string_view name) override;
  void bring_to_front() override;
  void yield() override;

  /// The application's own collection of workbooks.
  Remote reach_workbooks() const { return part(HostMember::Workbooks, "Workbooks"); }

 private:
  Ref<host::Application> application() const override;
};

}  // namespace qto::late_bound
