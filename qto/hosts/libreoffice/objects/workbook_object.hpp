#pragma once

#include "qto/host/workbook.hpp"
#include "qto/hosts/libreoffice/objects/application_object.hpp"

namespace qto::libreoffice {

/// The handle of a book; there is one per book while somebody holds it.
class WorkbookObject final : public host::Workbook {
 public:
  WorkbookObject(Ref<ApplicationObject> application, OpenBook& book)
      : application_(std::move(application)), book_(&book) {}
  ~WorkbookObject() override;

  Ref<host::HostObject> Parent() const override { return application(); }
  bool exists() const noexcept override { return book_ && book_->document.alive(); }
  std::string Name() const override { return document().name(); }
  std::string Path() const override { return document().path(); }
  std::string FullName() const override { return document().full_name(); }

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

  bool AcceptLabelsInFormulas() const override;
  void put_AcceptLabelsInFormulas(bool on) override;
  std::vector<std::string> LinkSources(std::int32_t type) const override;
  void Unprotect(std::string_view password) override;
  void Activate() override { application_->activate(book()); }
  void Close(bool save_changes) override;
  void FollowHyperlink(std::string_view address) override;

  /// The book; throws when it is closed.
  OpenBook& book() const;
  Document& document() const { return book().document; }
  const Ref<ApplicationObject>& owner() const noexcept { return application_; }
  void forget() noexcept { book_ = nullptr; }

 private:
  Ref<host::Application> application() const override {
    return Ref<host::Application>(application_.get());
  }

  Ref<ApplicationObject> application_;
  OpenBook* book_;
};

}  // namespace qto::libreoffice
