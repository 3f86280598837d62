#include "qto/parser/token.hpp"

#include <array>

namespace qto {

std::string_view token_type_name(const Token& token) noexcept {
  static constexpr std::array<std::string_view, 26> names = {"",
                                                             "STRING",
                                                             "END TOKEN",
                                                             "PATH NAME",
                                                             "WORKBOOK",
                                                             "WORKSHEET",
                                                             "FUNCTION",
                                                             "INDIRECT",
                                                             "HLOOKUP",
                                                             "VLOOKUP",
                                                             "LOOKUP",
                                                             "MATCH",
                                                             "INDEX",
                                                             "IF",
                                                             "SUMIF",
                                                             "OFFSET",
                                                             "ERROR CONSTANT",
                                                             "CONSTANT",
                                                             "RANGE",
                                                             "WORKBOOK NAME",
                                                             "WORKSHEET NAME",
                                                             "POSSIBLE NAME",
                                                             "PIPE",
                                                             "APPLICATION",
                                                             "DOCUMENT",
                                                             "LINK"};
  return token.type == TokenType::own_text ? token.text
                                           : names[static_cast<std::size_t>(token.type)];
}

std::string_view trim_white_space(std::string_view text) noexcept {
  const auto white = [](char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; };
  while (!text.empty() && white(text.front())) text.remove_prefix(1);
  while (!text.empty() && white(text.back())) text.remove_suffix(1);
  return text;
}

std::string TokenTable::dump() const {
  std::string out;
  for (const Token& token : tokens) {
    out.append(token.text).append(" ");
    out.append("\"").append(token_type_name(token)).append("\"\n");
  }
  return out;
}

}  // namespace qto
