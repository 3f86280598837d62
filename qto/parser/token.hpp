#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qto {

/// The type of a token. The literal that each stands for is what token_type_name gives.
enum class TokenType : std::uint8_t {
  none,
  string,
  end_token,
  path_name,
  workbook,
  worksheet,
  function,
  indirect,
  hlookup,
  vlookup,
  lookup,
  match,
  index,
  if_function,
  sumif,
  offset,
  error_constant,
  constant,
  range,
  workbook_name,
  worksheet_name,
  possible_name,
  pipe,
  application,
  document,
  link,
  own_text,  ///< the type is the token's own text: a special function not in upper case
};

/// A piece of a formula, cut exactly, surrounding spaces and quotes included. The text belongs to
/// the table that the token was made for.
struct Token {
  std::string_view text;
  TokenType type = TokenType::none;
};

using Tokens = std::span<const Token>;

/// "RANGE", "END TOKEN" and so on; of own_text the token's text.
std::string_view token_type_name(const Token& token) noexcept;

/// Without surrounding white space (also line breaks): what the host is asked about.
std::string_view trim_white_space(std::string_view text) noexcept;

/// A formula and its tokens. Tokens count from 1 in at(); the table stays where it is, for tokens
/// point into its text.
class TokenTable {
 public:
  TokenTable() = default;
  TokenTable(const TokenTable&) = delete;
  TokenTable& operator=(const TokenTable&) = delete;

  /// Takes over the text of a formula and forgets the tokens.
  void start(std::string_view formula) {
    text_.assign(formula);
    tokens.clear();
  }
  const std::string& text() const noexcept { return text_; }
  std::size_t count() const noexcept { return tokens.size(); }
  Token& at(std::size_t position) noexcept { return tokens[position - 1]; }
  /// One line of text and type per token, for tests and diagnosis.
  std::string dump() const;

  std::vector<Token> tokens;

 private:
  std::string text_;
};

}  // namespace qto
