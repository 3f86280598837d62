#pragma once

#include <string_view>
#include <vector>

#include "qto/automation/variant.hpp"
#include "qto/hosts/libreoffice/document/document.hpp"

namespace qto::libreoffice {

/// What a formula text gives: cells of one sheet of an open book, or a value.
struct Evaluated {
  Ref<SheetSlot> sheet;  ///< null for a value
  std::vector<Rect> blocks;
  Variant value;
};

enum class EvaluationMode {
  cell,   ///< as in an ordinary formula: a block meets the formula's row or column
  array,  ///< as in an array formula: over all elements
};

/// The result of a formula text, "=" first or not, as a formula in the cell would see it. Of a text
/// that is no formula an error value, of an empty one Empty. The suite evaluates it in a cell at
/// the end of the grid that nobody sees.
Evaluated evaluate(Document& document, SheetSlot& sheet, CellPos at, std::string_view text,
                   EvaluationMode mode);

/// The cells that a text which is no more than a reference, or a name of one, denotes.
bool find_reference(Document& document, SheetSlot& sheet, CellPos at, std::string_view text,
                    Evaluated& found);

}  // namespace qto::libreoffice
