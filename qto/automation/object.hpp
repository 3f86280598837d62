#pragma once

#include <string_view>

#include "qto/automation/ref.hpp"

namespace qto {

/// What a client can hold: an object of the engine or of its host.
class Object : public RefCounted {
 public:
  /// The class name that type information reports, such as "Range"; compared exactly.
  virtual std::string_view TypeName() const noexcept = 0;
};

}  // namespace qto
