#pragma once

#include <exception>

namespace qto::host {

/// Runs what puts the host back as it was, which destructors do. A call that fails once, as calls
/// of a busy application do, must not leave the user without screen or alerts, so it is tried twice
/// more; true when it was done in the end. Nothing is thrown.
template <class Restore>
bool restore(Restore&& put_back) noexcept {
  constexpr int attempts = 3;
  for (int i = 0; i < attempts; ++i) {
    try {
      put_back();
      return true;
    } catch (...) {
    }
  }
  return false;
}

}  // namespace qto::host
