#pragma once

#include <vector>

#include "qto/parser/token.hpp"

namespace qto {

/// Cuts the table's formula into tokens: text literals ("STRING"), single delimiters ("END TOKEN")
/// and everything between them, untyped. The first character, the equals sign, is never looked at.
void scan_formula(TokenTable& table);

/// The tokens that replace one apostrophe-quoted qualifier: folder, book and sheet, as far as they
/// are there. Doubled apostrophes inside stay doubled.
std::vector<Token> split_quoted_path_name(std::string_view text);

/// The type of a function name: one of the nine special functions, or "FUNCTION".
TokenType check_for_dodgy_functions(std::string_view name) noexcept;

/// False for the parts of a DDE/OLE link, which are never split as quoted names.
bool is_not_dde_type(TokenType type) noexcept;

}  // namespace qto
