#pragma once

#include "qto/com/com.hpp"

namespace qto::server::com {

/// An object of ours that stands for one of another server.
class RemoteObject {
 public:
  virtual ~RemoteObject() = default;
  /// The object that it stands for; the reference is the caller's. Null when it cannot be reached.
  virtual Unknown* remote_reference() = 0;
};

}  // namespace qto::server::com
