#pragma once

#include <string>

#include "qto/automation/variant.hpp"
#include "qto/formula/lexer.hpp"

namespace qto::formula {

/// Reads an array constant such as {1,2;"a",#N/A}. The lexer has just read its opening brace and
/// ends behind the closing one. Null, with `problem` saying why, when it is none.
Ref<const VariantArray> read_array_constant(Lexer& lexer, std::string& problem);

}  // namespace qto::formula
