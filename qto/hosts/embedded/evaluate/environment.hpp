#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// A block of cells on one sheet of an open book.
struct Area {
  Sheet* sheet = nullptr;
  Rect rect;
  bool operator==(const Area&) const = default;
};

/// What the evaluator asks of its surroundings.
class Environment {
 public:
  virtual ~Environment() = default;

  /// Called before values of formula cells in the area are read. False: some of them wait for
  /// calculation themselves (they were noted); the evaluation under way is given up and will be
  /// repeated when they are done.
  virtual bool ready(const Area& area) = 0;
  /// The open book of that name (without folder), or null.
  virtual Book* find_open_book(std::string_view name) const = 0;
  /// The present moment as a serial number in the 1900 system, fixed for one calculation.
  virtual double now() const = 0;
  /// A number in [0, 1).
  virtual double random() = 0;
};

}  // namespace qto::embedded
