#pragma once

#include <string>

#include "qto/formula/formula_pieces.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"

namespace qto::embedded {

enum class TextForm {
  formula,  ///< plain references only
  local,    ///< as the author sees it
  r1c1,     ///< as the author sees it, in R1C1 notation
};

/// Joins the pieces of a formula for one cell, "=" first.
void append_pieces(std::string& out, const formula::FormulaPieces& formula,
                   const RenderContext& context, TextForm form);

}  // namespace qto::embedded
