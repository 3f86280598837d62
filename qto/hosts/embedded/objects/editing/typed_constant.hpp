#pragma once

#include <string_view>

#include "qto/automation/variant.hpp"
#include "qto/hosts/embedded/objects/application_object.hpp"

namespace qto::embedded {

/// A constant as it was typed into a cell, and the number format that comes with it ("" for none).
struct TypedConstant {
  Variant value;
  std::string_view format;
};

/// Reads numbers, percentages, amounts, dates and times, TRUE and FALSE and error values; anything
/// else is a text. A leading apostrophe marks a text and is taken away.
TypedConstant read_typed(std::string_view typed, bool date1904,
                         const ApplicationObject& application);

}  // namespace qto::embedded
