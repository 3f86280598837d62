#pragma once

#include "qto/host/workbooks.hpp"
#include "qto/hosts/libreoffice/objects/application_object.hpp"

namespace qto::libreoffice {

class WorkbooksObject final : public host::Workbooks {
 public:
  explicit WorkbooksObject(Ref<ApplicationObject> application)
      : application_(std::move(application)) {}

  Ref<host::HostObject> Parent() const override { return application(); }
  bool exists() const noexcept override { return true; }
  Ref<host::Workbook> find(std::string_view name) const override;
  Ref<host::Workbook> find(int position) const override;
  Ref<host::Workbook> Item(std::string_view name) const override;
  Ref<host::Workbook> Item(int position) const override;
  int Count() const override;
  Ref<host::Workbook> Open(std::string_view file_name, std::optional<bool> update_links,
                           bool read_only, std::string_view password) override;
  Ref<host::Workbook> Add() override;

 private:
  Ref<host::Application> application() const override {
    return Ref<host::Application>(application_.get());
  }

  Ref<ApplicationObject> application_;
};

}  // namespace qto::libreoffice
