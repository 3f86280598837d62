#pragma once

#include <string>
#include <string_view>

#include "qto/automation/variant.hpp"
#include "qto/host/host_object.hpp"

namespace qto::host {

class Range;

/// One pivot table of a worksheet.
class PivotTable : public HostObject {
 public:
  std::string_view TypeName() const noexcept final { return "PivotTable"; }
  virtual std::string Name() const = 0;
  /// The range that it occupies, page fields included.
  virtual Ref<Range> TableRange2() const = 0;
  /// The description of its source; converted to text where an array.
  virtual std::string SourceData() const = 0;
};

}  // namespace qto::host
