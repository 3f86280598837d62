#include "qto/formula/array_constant.hpp"

#include <optional>
#include <vector>

#include "qto/formula/token_values.hpp"

namespace qto::formula {
namespace {

std::optional<Variant> read_element(Lexer& lexer) {
  Token token = lexer.next();
  const bool negative = token.kind == TokenKind::minus;
  if (negative || token.kind == TokenKind::plus) {
    token = lexer.next();
    if (token.kind != TokenKind::number) return std::nullopt;
  }
  const std::string_view text = lexer.text(token);
  switch (token.kind) {
    case TokenKind::number:
      return Variant(negative ? -number_value(text) : number_value(text));
    case TokenKind::text:
      return Variant(unquote(text));
    case TokenKind::error:
      return Variant(error_value(text));
    case TokenKind::name:
      if (const auto value = boolean_value(text)) return Variant(*value);
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

Ref<const VariantArray> make_array(std::vector<Variant>& elements, int columns) {
  const int rows = static_cast<int>(elements.size()) / columns;
  auto array = make_ref<VariantArray>(rows, columns);
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column)
      array->at(row + 1, column + 1) = std::move(elements[row * columns + column]);
  return array;
}

}  // namespace

Ref<const VariantArray> read_array_constant(Lexer& lexer, std::string& problem) {
  std::vector<Variant> elements;
  int columns = 0;
  for (int column = 1;; ++column) {
    std::optional<Variant> element = read_element(lexer);
    const Token separator = lexer.next();
    const bool row_ends =
        separator.kind == TokenKind::semicolon || separator.kind == TokenKind::close_brace;
    if (!element || (!row_ends && separator.kind != TokenKind::comma)) {
      problem = "an array constant holds something that is no constant";
      return nullptr;
    }
    elements.push_back(std::move(*element));
    if (!row_ends) continue;
    if (columns != 0 && column != columns) {
      problem = "the rows of an array constant differ in length";
      return nullptr;
    }
    columns = column;
    column = 0;
    if (separator.kind == TokenKind::close_brace) return make_array(elements, columns);
  }
}

}  // namespace qto::formula
