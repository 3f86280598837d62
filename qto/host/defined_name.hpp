#pragma once

#include <string>

#include "qto/host/host_object.hpp"

namespace qto::host {

/// One defined name (class name "Name"), of a workbook or of a sheet.
class DefinedName : public HostObject {
 public:
  std::string_view TypeName() const noexcept final { return "Name"; }

  /// The name; for a sheet-level name the sheet, "!" and the name.
  virtual std::string Name() const = 0;
  virtual std::string NameLocal() const = 0;
  /// Position among the workbook's names from 1; 0 when the name is gone.
  virtual int Index() const = 0;
  virtual bool Visible() const = 0;
  /// What the name refers to, "=" first; of a relative name as seen from the active cell.
  virtual std::string RefersTo() const = 0;
  virtual std::string RefersToLocal() const = 0;
  virtual std::string RefersToR1C1Local() const = 0;
};

}  // namespace qto::host
