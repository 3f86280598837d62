#pragma once

#include <string>
#include <string_view>

#include "qto/parser/token.hpp"

namespace qto {

/// True when a formula names values for itself with LET or LAMBDA.
bool has_bindings(Tokens formula) noexcept;

/// True when the formula itself gives the name, in any letter case, to a value.
bool binds(Tokens formula, std::string_view name);

/// The text of a piece of a formula, such that it can be evaluated alone: inside LET calls with the
/// names that hold where the piece stands, "LET(rate,B1,rate>0)". `text` is what the tokens of
/// `piece`, which are part of `formula`, read as.
std::string with_bindings(Tokens formula, Tokens piece, std::string text);

}  // namespace qto
