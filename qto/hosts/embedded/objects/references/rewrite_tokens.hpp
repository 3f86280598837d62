#pragma once

#include <string>
#include <string_view>

#include "qto/formula/lexer.hpp"

namespace qto::embedded {

inline std::string_view equals_of(std::string_view formula) {
  return formula.starts_with('=') ? formula.substr(0, 1) : std::string_view{};
}

inline std::string_view without_equals(std::string_view formula) {
  return formula.substr(equals_of(formula).size());
}

/// Copies a formula, with "=" or without, letting `rewrite(kind, text, previous kind, out)` write
/// each of its tokens.
template <class Rewrite>
std::string rewrite_tokens(std::string_view formula, Rewrite&& rewrite) {
  const std::string_view body = without_equals(formula);
  std::string out(equals_of(formula));
  formula::Lexer lexer(body);
  std::uint32_t copied = 0;
  formula::TokenKind previous = formula::TokenKind::end;
  for (formula::Token token = lexer.next(); token.kind != formula::TokenKind::end;
       token = lexer.next()) {
    out.append(body.substr(copied, token.begin - copied));
    rewrite(token.kind, lexer.text(token), previous, out);
    copied = token.end;
    previous = token.kind;
  }
  return out.append(body.substr(copied));
}

}  // namespace qto::embedded
