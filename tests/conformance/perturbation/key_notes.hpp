#pragma once

#include <vector>

#include "qto/hosts/embedded/evaluate/environment.hpp"
#include "qto/hosts/embedded/evaluate/function_spec.hpp"

namespace qto::embedded::conformance {

/// The cells through which lookups and conditional sums look for what they deliver. A drill that
/// follows what was used leaves them out, although a change there may let another cell be found.
struct KeyNotes {
  std::vector<Area> areas;
  /// Some keys were values that functions had made: their cells cannot be told.
  bool from_values = false;
};

/// The functions of formulas; those that look through keys write down where these are in the notes
/// that are being taken.
const FunctionTable& functions_noting_keys();

/// Takes notes as long as it lives; only one does at a time.
class NoteTaking {
 public:
  explicit NoteTaking(KeyNotes& notes);
  ~NoteTaking();
  NoteTaking(const NoteTaking&) = delete;
  NoteTaking& operator=(const NoteTaking&) = delete;
};

}  // namespace qto::embedded::conformance
