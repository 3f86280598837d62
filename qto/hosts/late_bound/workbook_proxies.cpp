#include "qto/hosts/late_bound/workbook_proxies.hpp"

#include "qto/host/host.hpp"
#include "qto/hosts/late_bound/application_proxy.hpp"
#include "qto/hosts/late_bound/name_proxy.hpp"

namespace qto::late_bound {

WorkbooksProxy::WorkbooksProxy(Ref<Session> session, Ref<ApplicationProxy> application)
    : ProxyOf(std::move(session)), application_(std::move(application)) {}

WorkbooksProxy::~WorkbooksProxy() = default;

const Remote& WorkbooksProxy::remote() const {
  if (!remote_) remote_ = application_->reach_workbooks();
  return remote_;
}

Ref<host::Workbook> WorkbooksProxy::find_item(const Variant& index) const {
  try {
    return find_object<host::Workbook>(remote(), HostMember::Item, "Workbook", {Given(index)});
  } catch (const host::HostFailure&) {
    return nullptr;
  }
}

Ref<host::Workbook> WorkbooksProxy::find(std::string_view name) const {
  return find_item(Variant(name));
}

Ref<host::Workbook> WorkbooksProxy::find(int position) const {
  return find_item(Variant(std::int32_t{position}));
}

Ref<host::Workbook> WorkbooksProxy::Item(std::string_view name) const {
  return need<host::Workbook>(HostMember::Item, "Workbook", {Variant(name)});
}

Ref<host::Workbook> WorkbooksProxy::Item(int position) const {
  return need<host::Workbook>(HostMember::Item, "Workbook", {Variant(std::int32_t{position})});
}

Ref<host::Workbook> WorkbooksProxy::Open(std::string_view file_name,
                                         std::optional<bool> update_links, bool read_only,
                                         std::string_view password) {
  const Given update = update_links ? Given(Variant(*update_links)) : std::nullopt;
  // The password is always passed, so that a protected file fails and asks nobody.
  return need<host::Workbook>(
      HostMember::Open, "Workbook",
      {Variant(file_name), update, Variant(read_only), std::nullopt, Variant(password)});
}

Ref<host::Workbook> WorkbooksProxy::Add() {
  return need<host::Workbook>(HostMember::Add, "Workbook");
}

Ref<host::Sheet> WorkbookProxy::sheet(const Variant& index) const {
  const auto found = fitting<host::Sheet>(
      HostMember::Item, sheets().get(HostMember::Item, session(), {Given(index)}));
  if (!found) fail_nothing(HostMember::Item);
  return found;
}

Ref<host::Worksheet> WorkbookProxy::worksheet(const Variant& index) const {
  const auto found =
      item<host::Worksheet>(worksheets(), HostMember::Item, "Worksheet", {Given(index)});
  if (!found) fail_nothing(HostMember::Item);
  return found;
}

Ref<host::Sheet> WorkbookProxy::find_sheet(std::string_view name) const {
  try {
    const auto found = sheets().probe(HostMember::Item, session(), {Variant(name)});
    return found ? ref_cast<host::Sheet>(found->object()) : nullptr;
  } catch (const host::HostFailure&) {
    return nullptr;
  }
}

Ref<host::Worksheet> WorkbookProxy::find_worksheet(std::string_view name) const {
  try {
    return find_object<host::Worksheet>(worksheets(), HostMember::Item, "Worksheet",
                                        {Variant(name)});
  } catch (const host::HostFailure&) {
    return nullptr;
  }
}

Ref<host::Sheet> WorkbookProxy::Sheets(std::string_view name) const { return sheet(Variant(name)); }

Ref<host::Sheet> WorkbookProxy::Sheets(int position) const {
  return sheet(Variant(std::int32_t{position}));
}

int WorkbookProxy::SheetsCount() const { return count_of(sheets()); }

Ref<host::Worksheet> WorkbookProxy::Worksheets(std::string_view name) const {
  return worksheet(Variant(name));
}

Ref<host::Worksheet> WorkbookProxy::Worksheets(int position) const {
  return worksheet(Variant(std::int32_t{position}));
}

int WorkbookProxy::WorksheetsCount() const { return count_of(worksheets()); }

Ref<host::Worksheet> WorkbookProxy::AddWorksheet(std::string_view name) {
  const Ref<host::Sheet> last = Sheets(SheetsCount());
  const auto added = item<host::Worksheet>(worksheets(), HostMember::Add, "Worksheet",
                                           {std::nullopt, Variant(last)});
  if (!added) fail_nothing(HostMember::Add);
  if (!name.empty()) dynamic_cast<RemoteHandle&>(*added).rename(name);
  return added;
}

Ref<host::DefinedName> WorkbookProxy::find_name(std::string_view name) const {
  try {
    return existing(
        find_object<host::DefinedName>(names(), HostMember::Item, "Name", {Variant(name)}));
  } catch (const host::HostFailure&) {
    return nullptr;
  }
}

Ref<host::DefinedName> WorkbookProxy::Names(std::string_view name) const {
  const auto found = item<host::DefinedName>(names(), HostMember::Item, "Name", {Variant(name)});
  if (!found) fail_nothing(HostMember::Item);
  return found;
}

std::vector<Ref<host::DefinedName>> WorkbookProxy::AllNames() const {
  return items<host::DefinedName>(names(), "Name");
}

Ref<host::DefinedName> WorkbookProxy::AddName(std::string_view name, std::string_view refers_to) {
  const auto added = item<host::DefinedName>(names(), HostMember::Add, "Name",
                                             {Variant(name), Variant(refers_to)});
  if (!added) fail_nothing(HostMember::Add);
  return added;
}

std::vector<std::string> WorkbookProxy::LinkSources(std::int32_t type) const {
  std::vector<std::string> sources;
  const Variant links = get(HostMember::LinkSources, {Variant(type)});
  if (links.is_array())
    for (const Variant& link : links.array().items())
      sources.push_back(converted(HostMember::LinkSources, link, com::Shape::text).text());
  return sources;
}

}  // namespace qto::late_bound
