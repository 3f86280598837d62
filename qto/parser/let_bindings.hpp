#pragma once

#include <string>

#include "qto/parser/token.hpp"

namespace qto {

/// True when a formula names values for itself with LET.
bool has_bindings(Tokens formula) noexcept;

/// The text of a piece of a formula, such that it can be evaluated alone: inside LET calls with the
/// names that hold where the piece stands, "LET(rate,B1,rate>0)". `text` is what the tokens of
/// `piece`, which are part of `formula`, read as.
std::string with_bindings(Tokens formula, Tokens piece, std::string text);

}  // namespace qto
