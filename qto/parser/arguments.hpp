#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "qto/parser/token.hpp"

namespace qto {

/// The most arguments a special function can have.
inline constexpr std::size_t most_arguments = 5;

/// One argument of a call, collected from the token at `position`; on return `position` is on the
/// "," or ")" that ended it, and `is_last` tells which. Only parentheses nest; a comma inside an
/// array constant separates like any other. A call that never ends raises a failure.
Tokens take_argument(Tokens tokens, std::size_t& position, bool& is_last);

/// The arguments of the call whose first argument token is at `position`; on return `position` is
/// on the closing ")". More than five raise failure 80040004.
std::vector<Tokens> get_args(Tokens tokens, std::size_t& position);

/// The formula text of an argument, a condition or a whole argument list, workbook and sheet names
/// in apostrophes again and a folder inside them, as the host's evaluation reads it.
std::string args_array_to_string(Tokens argument);

}  // namespace qto
