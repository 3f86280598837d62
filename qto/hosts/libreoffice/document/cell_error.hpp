#pragma once

#include <cstdint>

#include "qto/automation/variant.hpp"

namespace qto::libreoffice {

/// The error value of a workbook file for an error number of the suite, as the suite itself writes
/// it into such files.
constexpr ErrorValue error_of(std::int32_t number) noexcept {
  switch (number) {
    case 503:
      return ErrorValue::num;
    case 521:
      return ErrorValue::null;
    case 524:
      return ErrorValue::ref;
    case 525:
    case 530:
    case 531:
      return ErrorValue::name;
    case 532:
      return ErrorValue::div0;
    case 32767:
      return ErrorValue::na;
    default:
      return ErrorValue::value;
  }
}

/// What the suite gives for a circular reference.
inline constexpr std::int32_t circular_error = 522;

}  // namespace qto::libreoffice
