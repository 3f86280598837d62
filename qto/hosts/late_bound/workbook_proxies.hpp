#pragma once

#include "qto/host/workbook.hpp"
#include "qto/host/workbooks.hpp"
#include "qto/hosts/late_bound/proxy.hpp"

namespace qto::late_bound {

class ApplicationProxy;

/// The collection is reached when it is first used, so that looking for a workbook is a probe from
/// end to end.
class WorkbooksProxy final : public ProxyOf<host::Workbooks> {
 public:
  using ProxyOf::ProxyOf;
  WorkbooksProxy(Ref<Session> session, Ref<ApplicationProxy> application);
  ~WorkbooksProxy() override;
  Ref<host::Workbook> find(std::string_view name) const override;
  Ref<host::Workbook> find(int position) const override;
  Ref<host::Workbook> Item(std::string_view name) const override;
  Ref<host::Workbook> Item(int position) const override;
  int Count() const override { return number(HostMember::Count); }
  Ref<host::Workbook> Open(std::string_view file_name, std::optional<bool> update_links,
                           bool read_only, std::string_view password) override;
  Ref<host::Workbook> Add() override;

 private:
  const Remote& remote() const override;
  Ref<host::Workbook> find_item(const Variant& index) const;
  Ref<ApplicationProxy> application_;  // null for a collection that the application answered
};

class WorkbookProxy final : public ProxyOf<host::Workbook> {
 public:
  using ProxyOf::ProxyOf;
  /// A closed workbook may still know its application.
  bool exists() const noexcept override { return probe(HostMember::Name).has_value(); }
  std::string Name() const override { return text(HostMember::Name); }
  std::string Path() const override { return text(HostMember::Path); }
  std::string FullName() const override { return text(HostMember::FullName); }
  Ref<host::Sheet> find_sheet(std::string_view name) const override;
  Ref<host::Worksheet> find_worksheet(std::string_view name) const override;
  Ref<host::Sheet> Sheets(std::string_view name) const override;
  Ref<host::Sheet> Sheets(int position) const override;
  int SheetsCount() const override;
  Ref<host::Worksheet> Worksheets(std::string_view name) const override;
  Ref<host::Worksheet> Worksheets(int position) const override;
  int WorksheetsCount() const override;
  Ref<host::Worksheet> AddWorksheet(std::string_view name) override;
  Ref<host::DefinedName> find_name(std::string_view name) const override;
  Ref<host::DefinedName> Names(std::string_view name) const override;
  std::vector<Ref<host::DefinedName>> AllNames() const override;
  Ref<host::DefinedName> AddName(std::string_view name, std::string_view refers_to) override;
  bool AcceptLabelsInFormulas() const override { return flag(HostMember::AcceptLabelsInFormulas); }
  void put_AcceptLabelsInFormulas(bool on) override {
    put(HostMember::AcceptLabelsInFormulas, Variant(on));
  }
  std::vector<std::string> LinkSources(std::int32_t type) const override;
  void Unprotect(std::string_view password) override {
    call(HostMember::Unprotect, {Variant(password)});
  }
  void Activate() override { call(HostMember::Activate); }
  void Close(bool save_changes) override { call(HostMember::Close, {Variant(save_changes)}); }
  void FollowHyperlink(std::string_view address) override {
    call(HostMember::FollowHyperlink, {Variant(address)});
  }

 private:
  const Remote& sheets() const { return kept_part(sheets_, HostMember::Sheets, "Sheets"); }
  const Remote& worksheets() const {
    return kept_part(worksheets_, HostMember::Worksheets, "Worksheets");
  }
  const Remote& names() const { return kept_part(names_, HostMember::Names, "Names"); }
  Ref<host::Sheet> sheet(const Variant& index) const;
  Ref<host::Worksheet> worksheet(const Variant& index) const;

  mutable Remote sheets_, worksheets_, names_;
};

}  // namespace qto::late_bound
