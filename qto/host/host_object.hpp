#pragma once

#include "qto/automation/object.hpp"

namespace qto::host {

class Application;

/// An object of the spreadsheet application's object model.
class HostObject : public Object {
 public:
  /// The owner: a range's worksheet, a sheet's workbook, a workbook's application … the
  /// application's parent is itself.
  virtual Ref<HostObject> Parent() const = 0;
  /// The application that the object belongs to.
  Ref<host::Application> Application() const;
  /// Probe: the object is still there (its sheet was not deleted, its workbook not closed).
  virtual bool exists() const noexcept = 0;

 protected:
  virtual Ref<host::Application> application() const = 0;
};

}  // namespace qto::host
