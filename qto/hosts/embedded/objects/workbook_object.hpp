#pragma once

#include "qto/host/workbook.hpp"
#include "qto/hosts/embedded/objects/application_object.hpp"

namespace qto::embedded {

/// The handle of an open book; there is one per book while somebody holds it.
class WorkbookObject final : public host::Workbook {
 public:
  WorkbookObject(Ref<ApplicationObject> application, OpenBook& open);
  ~WorkbookObject() override;

  Ref<host::HostObject> Parent() const override { return application(); }
  bool exists() const noexcept override { return open_ != nullptr; }
  std::string Name() const override;
  std::string Path() const override;
  std::string FullName() const override;

  Ref<host::Sheet> find_sheet(std::string_view name) const override;
  Ref<host::Worksheet> find_worksheet(std::string_view name) const override;
  Ref<host::Sheet> Sheets(std::string_view name) const override;
  Ref<host::Sheet> Sheets(int position) const override;
  int SheetsCount() const override;
  Ref<host::Worksheet> Worksheets(std::string_view name) const override;
  Ref<host::Worksheet> Worksheets(int position) const override;
  int WorksheetsCount() const override;
  Ref<host::Worksheet> AddWorksheet(std::string_view name) override;

  /// A sheet-level name too when `name` is qualified (Sheet1!Rate).
  Ref<host::DefinedName> find_name(std::string_view name) const override;
  Ref<host::DefinedName> Names(std::string_view name) const override;
  std::vector<Ref<host::DefinedName>> AllNames() const override;
  Ref<host::DefinedName> AddName(std::string_view name, std::string_view refers_to) override;

  bool AcceptLabelsInFormulas() const override;
  void put_AcceptLabelsInFormulas(bool on) override;
  std::vector<std::string> LinkSources(std::int32_t type) const override;
  void Unprotect(std::string_view password) override;
  void Activate() override;
  void Close(bool save_changes) override;
  void FollowHyperlink(std::string_view address) override;

  /// Null once the book is closed.
  OpenBook* open_book() const noexcept { return open_; }
  /// The book; throws when it is closed.
  OpenBook& open() const;
  void book_gone() noexcept { open_ = nullptr; }
  const Ref<ApplicationObject>& owner() const noexcept { return application_; }

 private:
  Ref<host::Application> application() const override;

  Ref<ApplicationObject> application_;
  OpenBook* open_;
};

}  // namespace qto::embedded
