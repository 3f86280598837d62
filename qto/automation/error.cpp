#include "qto/automation/error.hpp"

namespace qto {

const char* AutomationError::what() const noexcept {
  switch (static_cast<ErrorNumber>(number)) {
    case ErrorNumber::wrong_object:
      return "This cannot be followed. Start from one cell, a chart's series or a ModelPart.";
    case ErrorNumber::no_formula:
      return "There is no formula, so nothing feeds it. Start from a cell with a formula.";
    case ErrorNumber::circular_reference:
      return "The workbook has a circular reference. Break the circle, or follow it to a limited "
             "depth.";
    case ErrorNumber::out_of_range:
      return "The value is out of range, or the property cannot be written in this state.";
    case ErrorNumber::unknown_token:
      return "A formula holds a part of a kind that is not known. A limited depth shows how far it "
             "can be "
             "followed.";
  }
  return "The engine cannot do what was asked for.";
}

}  // namespace qto
