#include "qto/automation/error.hpp"

namespace qto {

const char* AutomationError::what() const noexcept {
  switch (static_cast<ErrorNumber>(number)) {
    case ErrorNumber::wrong_object:
      return "The object cannot be followed: give one cell, a chart's series or a ModelPart.";
    case ErrorNumber::no_formula:
      return "The start cell holds no formula.";
    case ErrorNumber::circular_reference:
      return "The start workbook holds a circular reference.";
    case ErrorNumber::out_of_range:
      return "The value is out of range, or the property cannot be written in this state.";
    case ErrorNumber::unknown_token:
      return "A formula holds a part of a kind that is not known.";
  }
  return "The engine cannot do what was asked for.";
}

}  // namespace qto
