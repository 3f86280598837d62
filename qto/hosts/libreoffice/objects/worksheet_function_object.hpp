#pragma once

#include "qto/host/worksheet_function.hpp"
#include "qto/hosts/libreoffice/objects/application_object.hpp"

namespace qto::libreoffice {

class WorksheetFunctionObject final : public host::WorksheetFunction {
 public:
  explicit WorksheetFunctionObject(Ref<ApplicationObject> application)
      : application_(std::move(application)) {}

  Ref<host::HostObject> Parent() const override { return application(); }
  bool exists() const noexcept override { return true; }
  std::optional<double> Match(const Variant& lookup_value, const Ref<host::Range>& lookup_range,
                              std::optional<double> match_type) override;
  double CountIf(const Ref<host::Range>& range, const Variant& criteria) override;

 private:
  Ref<host::Application> application() const override {
    return Ref<host::Application>(application_.get());
  }

  Ref<ApplicationObject> application_;
};

}  // namespace qto::libreoffice
