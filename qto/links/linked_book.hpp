#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "qto/automation/enumerations.hpp"
#include "qto/automation/object.hpp"
#include "qto/host/application.hpp"

namespace qto {

/// One external workbook that formulas refer to: where it lives, whether the engine opened it and,
/// if not, why.
class LinkedBook : public Object {
 public:
  std::string_view TypeName() const noexcept override { return "LinkedBook"; }

  /// True exactly when WhyNotOpened is qtoWNOOK, as in a new record.
  bool Opened() const;
  qtoReasonNotOpened WhyNotOpened() const;
  /// Takes 0 to 5; any other value raises 80040004 and changes nothing.
  void put_WhyNotOpened(qtoReasonNotOpened reason);
  /// Path, a separator unless the path ends with it, and name.
  std::string FullNameWithPath() const;
  /// Opens the workbook again, read-only and without updating links; false when it was not opened
  /// the first time or the host fails.
  bool OpenIt(const Ref<host::Application>& in_app);
  /// Stores the path and classifies it as local or internet address.
  void put_Path(std::string_view path);
  const std::string& Path() const;
  bool IsLocalFile() const;
  const std::string& Name() const;
  void put_Name(std::string_view name);
  const std::string& Password() const;
  void put_Password(std::string_view password);
  /// Closes the workbook without saving if the engine had opened it; failures are ignored.
  void CloseBook();

  // Inside the engine only

  /// The application that the workbook belongs to; without one, the shared application does.
  void set_application(Ref<host::Application> application) {
    application_ = std::move(application);
  }

 private:
  Ref<host::Application> application_;
  qtoReasonNotOpened why_not_opened_ = qtoWNOOK;
  bool local_file_ = false;
  std::string name_;
  std::string path_;
  std::string password_;
};

}  // namespace qto
