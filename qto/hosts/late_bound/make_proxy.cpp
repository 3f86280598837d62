#include "qto/hosts/late_bound/make_proxy.hpp"

#include "qto/com/errors.hpp"
#include "qto/hosts/late_bound/application_proxy.hpp"
#include "qto/hosts/late_bound/chart_proxies.hpp"
#include "qto/hosts/late_bound/late_bound.hpp"
#include "qto/hosts/late_bound/name_proxy.hpp"
#include "qto/hosts/late_bound/range_proxy.hpp"
#include "qto/hosts/late_bound/window_proxies.hpp"
#include "qto/hosts/late_bound/workbook_proxies.hpp"
#include "qto/hosts/late_bound/worksheet_proxy.hpp"

namespace qto::late_bound {
namespace {

template <class Proxy>
Ref<Object> make(const Ref<Session>& session, Remote remote) {
  return make_ref<Proxy>(session, std::move(remote));
}

struct Maker {
  std::string_view class_name;
  Ref<Object> (*make)(const Ref<Session>& session, Remote remote);
};
constexpr Maker makers[] = {
    {"Application", make<ApplicationProxy>},
    {"Chart", make<ChartProxy>},
    {"ChartObject", make<ChartObjectProxy>},
    {"Name", make<NameProxy>},
    {"Pane", make<PaneProxy>},
    {"PivotTable", make<PivotTableProxy>},
    {"Range", make<RangeProxy>},
    {"Series", make<SeriesProxy>},
    {"Window", make<WindowProxy>},
    {"Workbook", make<WorkbookProxy>},
    {"Workbooks", make<WorkbooksProxy>},
    {"Worksheet", make<WorksheetProxy>},
    {"WorksheetFunction", make<WorksheetFunctionProxy>},
};

}  // namespace

Ref<Object> make_proxy(const Ref<Session>& session, com::Holder<com::Dispatch> object,
                       std::string_view class_name) {
  Remote remote = session->remote(std::move(object), class_name);
  for (const Maker& maker : makers)
    if (maker.class_name == class_name) return maker.make(session, std::move(remote));
  if (remote.has(HostMember::Application))
    return make_ref<OtherProxy>(session, std::move(remote), class_name);
  return make_ref<ForeignObject>(session, std::move(remote), class_name);
}

Ref<Object> proxy_of(com::Unknown& unknown) {
  void* found = nullptr;
  if (unknown.QueryInterface(com::iid_dispatch, &found) != com::ok || !found)
    throw com::CallFailure(com::CallError::type_mismatch);
  const com::Holder<com::Dispatch> object(static_cast<com::Dispatch*>(found));
  return Session::of(*object.get())->unmarshal(*object.get());
}

}  // namespace qto::late_bound
