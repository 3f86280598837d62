#pragma once

#include <string>
#include <vector>

#include "tests/conformance/perturbation/chance.hpp"

namespace qto::embedded::conformance {

/// A formula that was put together, so that it can be taken apart again: a text with a mark for
/// each part.
struct GeneratedFormula {
  static constexpr char mark = '\1';
  std::string form;
  std::vector<GeneratedFormula> parts;

  std::string text() const;
  /// The formula with one part simpler than here, in every way.
  std::vector<GeneratedFormula> simpler() const;
};

/// What the formulas of a book may refer to.
struct GeneratedNames {
  std::string own_sheet;                 ///< as written in a reference
  std::vector<std::string> data_sheets;  ///< of the own book, as written, in tab order
  std::vector<std::string> qualifiers;   ///< data sheets of all open books, as written
  std::vector<std::string> cell_names, range_names, value_names, function_names;
  std::vector<std::string> tables;
  std::vector<std::string> spilled;  ///< "K1#", as written
};

/// Writes formulas for a cell of a book that lies out as GeneratedBook says. `levels`: how deep
/// calls may stand in each other.
GeneratedFormula generate_formula(const GeneratedNames& names, Chance& chance, int levels);

}  // namespace qto::embedded::conformance
