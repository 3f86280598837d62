#pragma once

#include <optional>
#include <string_view>

#include "qto/automation/variant.hpp"
#include "qto/host/host_object.hpp"

namespace qto::host {

class Range;

/// The application's worksheet functions that the engine calls directly.
class WorksheetFunction : public HostObject {
 public:
  std::string_view TypeName() const noexcept final { return "WorksheetFunction"; }
  /// Probe: MATCH(value, range [, match type]); nothing when not found or not a vector.
  virtual std::optional<double> Match(const Variant& lookup_value, const Ref<Range>& lookup_range,
                                      std::optional<double> match_type = {}) = 0;
  /// COUNTIF(range, criteria); throws when the host cannot evaluate it.
  virtual double CountIf(const Ref<Range>& range, const Variant& criteria) = 0;
};

}  // namespace qto::host
