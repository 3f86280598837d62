#pragma once

#include <cstdint>
#include <string_view>

#include "qto/automation/address.hpp"

namespace qto::formula {

enum class TokenKind : std::uint8_t {
  end,
  number,
  text,        ///< a quoted text, quotes included
  error,       ///< an error constant
  area,        ///< a cell, block, columns or rows; Lexer::area() has the corners
  qualifier,   ///< what stands before a reference, "!" included; "#REF!" before an address too
  name,        ///< a name, TRUE and FALSE among them
  function,    ///< a function's name; the parenthesis is the next token
  structured,  ///< a structured reference with its table name
  plus,
  minus,
  multiply,
  divide,
  power,
  join,
  percent,
  equal,
  not_equal,
  less,
  less_equal,
  greater,
  greater_equal,
  at,
  hash,  ///< the spill mark after an operand
  colon,
  comma,
  semicolon,
  open,
  close,
  open_brace,
  close_brace,
  invalid,  ///< no token starts here; the rest of the text is not read
};

struct Token {
  TokenKind kind = TokenKind::end;
  bool blank_before = false;
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
};

/// Cuts a formula text (without "=") into tokens. Blanks belong to no token. Never fails: what
/// cannot be read is one invalid token, and nothing comes after it.
class Lexer {
 public:
  explicit Lexer(std::string_view formula) noexcept : text_(formula) {}
  Token next() noexcept;
  /// The next area token; everything before it is passed over. The end, or an invalid token, when
  /// there is none.
  Token next_area() noexcept;
  /// The corners of the area token that was read last.
  const WrittenArea& area() const noexcept { return area_; }
  std::string_view text(const Token& token) const noexcept {
    return text_.substr(token.begin, token.end - token.begin);
  }

 private:
  char at(std::uint32_t pos) const noexcept { return pos < text_.size() ? text_[pos] : '\0'; }
  Token make(TokenKind kind, std::uint32_t end) noexcept;
  Token invalid() noexcept;
  Token read_operand() noexcept;
  Token read_word() noexcept;
  Token read_number() noexcept;
  Token read_text() noexcept;
  Token read_quoted() noexcept;
  Token read_bracket() noexcept;
  Token read_hash() noexcept;
  Token read_operator() noexcept;
  bool take_area(std::uint32_t pos, std::uint32_t& end) noexcept;
  std::uint32_t corner(std::uint32_t pos, WrittenCell& cell) const noexcept;
  bool ends_address(std::uint32_t pos) const noexcept;
  std::uint32_t word_end(std::uint32_t pos) const noexcept;
  std::uint32_t quoted_end(std::uint32_t pos) const noexcept;
  std::uint32_t brackets_end(std::uint32_t pos) const noexcept;
  std::uint32_t sheets_end(std::uint32_t pos) const noexcept;

  std::string_view text_;
  WrittenArea area_;
  std::uint32_t begin_ = 0;  // of the token under way
  std::uint32_t pos_ = 0;
  bool blank_ = false;
  TokenKind last_ = TokenKind::end;
};

/// Length of the error constant at the start of `text`, 0 when there is none.
std::uint32_t error_constant_length(std::string_view text) noexcept;

}  // namespace qto::formula
