#include "qto/hosts/late_bound/application_proxy.hpp"

#include "qto/host/host.hpp"
#include "qto/hosts/late_bound/desktop.hpp"
#include "qto/hosts/late_bound/name_proxy.hpp"
#include "qto/hosts/late_bound/workbook_proxies.hpp"

namespace qto::late_bound {

Ref<host::Application> ApplicationProxy::application() const {
  return Ref<host::Application>(const_cast<ApplicationProxy*>(this));
}

Ref<host::Workbooks> ApplicationProxy::Workbooks() {
  return make_ref<WorkbooksProxy>(shared_session(), Ref<ApplicationProxy>(this));
}

Ref<host::Workbook> ApplicationProxy::ActiveWorkbook() {
  return object<host::Workbook>(HostMember::ActiveWorkbook, "Workbook");
}

Ref<host::Sheet> ApplicationProxy::ActiveSheet() {
  return any_object<host::Sheet>(HostMember::ActiveSheet);
}

/// Applications answer the surface or the frame of a chart that is selected as a whole.
Ref<Object> ApplicationProxy::Selection() {
  const Ref<Object> selected = any_object<Object>(HostMember::Selection);
  if (const auto frame = ref_cast<host::ChartObject>(selected)) return frame->Chart();
  if (selected && selected->TypeName() == "ChartArea")
    if (const auto area = ref_cast<host::HostObject>(selected)) return area->Parent();
  return selected;
}

Ref<host::Window> ApplicationProxy::ActiveWindow() {
  return object<host::Window>(HostMember::ActiveWindow, "Window");
}

Ref<host::Chart> ApplicationProxy::ActiveChart() {
  return object<host::Chart>(HostMember::ActiveChart, "Chart");
}

void ApplicationProxy::Goto(const Ref<host::Range>& reference, bool scroll) {
  call(HostMember::Goto, {Variant(reference), Variant(scroll)});
}

Ref<host::Range> ApplicationProxy::Intersect(const Ref<host::Range>& a, const Ref<host::Range>& b) {
  return object<host::Range>(HostMember::Intersect, "Range", {Variant(a), Variant(b)});
}

std::string ApplicationProxy::ConvertFormula(std::string_view formula, std::int32_t from_style,
                                             std::int32_t to_style,
                                             const Ref<host::Range>& relative_to) {
  if (!relative_to)
    return text(HostMember::ConvertFormula,
                {Variant(formula), Variant(from_style), Variant(to_style)});
  return text(HostMember::ConvertFormula, {Variant(formula), Variant(from_style), Variant(to_style),
                                           std::nullopt, Variant(relative_to)});
}

Ref<host::WorksheetFunction> ApplicationProxy::WorksheetFunction() {
  return need<host::WorksheetFunction>(HostMember::WorksheetFunction, "WorksheetFunction");
}

Ref<host::DefinedName> ApplicationProxy::find_name(std::string_view name) {
  try {
    const Remote names = part(HostMember::Names, "Names");
    return existing(
        find_object<host::DefinedName>(names, HostMember::Item, "Name", {Variant(name)}));
  } catch (const host::HostFailure&) {
    return nullptr;
  }
}

Ref<host::DefinedName> ApplicationProxy::Names(std::string_view name) {
  return item<host::DefinedName>(part(HostMember::Names, "Names"), HostMember::Item, "Name",
                                 {Variant(name)});
}

void ApplicationProxy::bring_to_front() { bring_window_to_front(Caption()); }

void ApplicationProxy::yield() { work_off_messages(); }

}  // namespace qto::late_bound
