#include "qto/formula/lexer.hpp"

#include <algorithm>
#include <array>

namespace qto::formula {
namespace {

// plain: a token, or a part of one, after which no operand has ended
enum CharClass : std::uint8_t { letter = 1, digit = 2, word = 4, blank = 8, plain = 16 };

constexpr std::array<std::uint8_t, 256> make_classes() {
  std::array<std::uint8_t, 256> table{};
  for (int c = 'A'; c <= 'Z'; ++c) table[c] = table[c + 32] = letter | word;
  for (int c = '0'; c <= '9'; ++c) table[c] = digit | word;
  // Letters of every script are bytes above ASCII.
  for (int c = 0x80; c < 256; ++c) table[c] = word;
  for (const char c : {'_', '.', '\\', '?'}) table[static_cast<unsigned char>(c)] = word;
  for (const char c : {' ', '\t', '\r', '\n'}) table[static_cast<unsigned char>(c)] = blank;
  for (const char c : {'+', '-', '*', '/', '^', '&', '=', '<', '>', '@', ':', ',', ';', '(', '{'})
    table[static_cast<unsigned char>(c)] = plain;
  return table;
}

constexpr auto classes = make_classes();

bool is(char c, std::uint8_t wanted) noexcept {
  return (classes[static_cast<unsigned char>(c)] & wanted) != 0;
}

constexpr std::string_view error_constants[] = {
    "#REF!",  "#N/A",      "#DIV/0!",   "#VALUE!",    "#NAME?",    "#NUM!",
    "#NULL!", "#SPILL!",   "#CALC!",    "#FIELD!",    "#BLOCKED!", "#GETTING_DATA",
    "#BUSY!", "#UNKNOWN!", "#CONNECT!", "#EXTERNAL!", "#PYTHON!",
};

bool ends_operand(TokenKind kind) noexcept {
  switch (kind) {
    case TokenKind::area:
    case TokenKind::name:
    case TokenKind::structured:
    case TokenKind::close:
    case TokenKind::hash:
      return true;
    default:
      return false;
  }
}

}  // namespace

std::uint32_t error_constant_length(std::string_view text) noexcept {
  const auto same = [](char a, char b) { return a == (b >= 'a' && b <= 'z' ? b - 32 : b); };
  for (const std::string_view error : error_constants)
    if (text.size() >= error.size() && std::equal(error.begin(), error.end(), text.begin(), same))
      return static_cast<std::uint32_t>(error.size());
  return 0;
}

Token Lexer::make(TokenKind kind, std::uint32_t end) noexcept {
  pos_ = end;
  last_ = kind;
  return {kind, blank_, begin_, end};
}

Token Lexer::invalid() noexcept {
  return make(TokenKind::invalid, static_cast<std::uint32_t>(text_.size()));
}

Token Lexer::next() noexcept {
  const std::uint32_t start = pos_;
  while (is(at(pos_), blank)) ++pos_;
  blank_ = pos_ != start;
  begin_ = pos_;
  if (begin_ >= text_.size()) return make(TokenKind::end, begin_);
  const char c = text_[begin_];
  if (is(c, word) || c == '$') return read_operand();
  switch (c) {
    case '"':
      return read_text();
    case '\'':
      return read_quoted();
    case '[':
      return read_bracket();
    case '#':
      return read_hash();
    case '!':
      return make(TokenKind::qualifier, begin_ + 1);
    default:
      return read_operator();
  }
}

Token Lexer::next_area() noexcept {
  while (true) {
    if (is(at(pos_), plain)) {
      last_ = TokenKind::plus;
      while (is(at(pos_), plain)) ++pos_;
    }
    const Token token = next();
    if (token.kind == TokenKind::area || token.kind == TokenKind::end ||
        token.kind == TokenKind::invalid)
      return token;
  }
}

Token Lexer::read_operand() noexcept {
  std::uint32_t end = begin_;
  if (take_area(begin_, end)) return make(TokenKind::area, end);
  const char c = text_[begin_];
  if (is(c, digit) || (c == '.' && is(at(begin_ + 1), digit))) return read_number();
  if (c == '$') return invalid();
  return read_word();
}

/// Reads "B7", "$B$7", "B" or "7" with its dollars; a part that is missing is 0. Gives the end, or
/// `pos` itself when nothing is there.
std::uint32_t Lexer::corner(std::uint32_t pos, WrittenCell& cell) const noexcept {
  cell = {};
  cell.pos = {0, 0};
  const bool dollar = at(pos) == '$';
  std::uint32_t p = pos + (dollar ? 1 : 0);
  const std::uint32_t letters = p;
  std::int32_t column = 0;
  for (; p - letters < 4 && is(at(p), letter); ++p) column = column * 26 + (at(p) & 0x1F);
  if (p - letters > 3 || column > max_columns) return pos;
  const bool row_dollar = column != 0 ? at(p) == '$' : dollar;
  std::uint32_t q = p + (column != 0 && row_dollar ? 1 : 0);
  std::int32_t row = 0;
  if (at(q) != '0')
    for (; is(at(q), digit); ++q) {
      row = row * 10 + (at(q) - '0');
      if (row > max_rows) return pos;
    }
  if (row == 0 && column == 0) return pos;
  cell.pos = {row, column};
  cell.column_absolute = column != 0 && dollar;
  cell.row_absolute = row != 0 && row_dollar;
  return row != 0 ? q : p;
}

/// True when an address that ends at `pos` is not the start of a longer word or of a call, sheet or
/// table name.
bool Lexer::ends_address(std::uint32_t pos) const noexcept {
  const char c = at(pos);
  return !is(c, word) && c != '(' && c != '!' && c != '[' && c != '$';
}

bool Lexer::take_area(std::uint32_t pos, std::uint32_t& end) noexcept {
  const std::uint32_t first_end = corner(pos, area_.first);
  if (first_end == pos) return false;
  const CellPos first = area_.first.pos;
  const bool cell = first.row != 0 && first.column != 0;
  if (at(first_end) == ':') {
    const std::uint32_t last_end = corner(first_end + 1, area_.last);
    const CellPos last = area_.last.pos;
    if (last_end != first_end + 1 && ends_address(last_end) &&
        (first.row == 0) == (last.row == 0) && (first.column == 0) == (last.column == 0)) {
      area_.shape = cell ? AreaShape::area : first.row == 0 ? AreaShape::columns : AreaShape::rows;
      end = last_end;
      return true;
    }
  }
  if (!cell || !ends_address(first_end)) return false;
  area_.last = area_.first;
  area_.shape = AreaShape::cell;
  end = first_end;
  return true;
}

std::uint32_t Lexer::word_end(std::uint32_t pos) const noexcept {
  while (is(at(pos), word)) ++pos;
  return pos;
}

/// The end of sheet names without apostrophes, "!" included: "Jan!", "Jan:Mar!". `pos` when there
/// are none.
std::uint32_t Lexer::sheets_end(std::uint32_t pos) const noexcept {
  std::uint32_t end = word_end(pos);
  if (end == pos) return pos;
  if (at(end) == '!') return end + 1;
  if (at(end) != ':') return pos;
  WrittenCell cell;
  // A sheet whose name reads as a cell needs apostrophes, so A1:Sheet2!B3 is no span.
  if (corner(pos, cell) == end && cell.pos.row != 0) return pos;
  const std::uint32_t last = word_end(end + 1);
  return last != end + 1 && at(last) == '!' ? last + 1 : pos;
}

Token Lexer::read_word() noexcept {
  const std::uint32_t end = word_end(begin_);
  if (last_ != TokenKind::qualifier || blank_) {
    const std::uint32_t sheets = sheets_end(begin_);
    if (sheets != begin_) return make(TokenKind::qualifier, sheets);
  }
  if (at(end) == '(') return make(TokenKind::function, end);
  if (at(end) == '[') {
    const std::uint32_t brackets = brackets_end(end);
    return brackets == end ? invalid() : make(TokenKind::structured, brackets);
  }
  if (at(end) == '|') {  // application|document!item
    const std::uint32_t document = at(end + 1) == '\'' ? quoted_end(end + 1) : word_end(end + 1);
    if (at(document) == '!') return make(TokenKind::qualifier, document + 1);
  }
  return make(TokenKind::name, end);
}

Token Lexer::read_number() noexcept {
  std::uint32_t p = begin_;
  while (is(at(p), digit)) ++p;
  if (at(p) == '.')
    for (++p; is(at(p), digit);) ++p;
  if ((at(p) | 0x20) == 'e') {
    const std::uint32_t sign = at(p + 1) == '+' || at(p + 1) == '-' ? 1 : 0;
    if (is(at(p + 1 + sign), digit))
      for (p += 1 + sign; is(at(p), digit);) ++p;
  }
  if (is(at(p), word) || at(p) == '!') {
    const std::uint32_t sheets = sheets_end(begin_);
    return sheets == begin_ ? invalid() : make(TokenKind::qualifier, sheets);
  }
  return make(TokenKind::number, p);
}

Token Lexer::read_text() noexcept {
  for (std::size_t p = begin_ + 1;; p += 2) {
    p = text_.find('"', p);
    if (p == std::string_view::npos) return invalid();
    if (at(static_cast<std::uint32_t>(p) + 1) != '"')
      return make(TokenKind::text, static_cast<std::uint32_t>(p) + 1);
  }
}

/// The end of the text in apostrophes that starts at `pos`; `pos` when it is not closed.
std::uint32_t Lexer::quoted_end(std::uint32_t pos) const noexcept {
  for (std::size_t p = pos + 1;; p += 2) {
    p = text_.find('\'', p);
    if (p == std::string_view::npos) return pos;
    if (at(static_cast<std::uint32_t>(p) + 1) != '\'') return static_cast<std::uint32_t>(p) + 1;
  }
}

Token Lexer::read_quoted() noexcept {
  const std::uint32_t end = quoted_end(begin_);
  if (end == begin_) return invalid();
  // The item of a link may stand in apostrophes too.
  if (last_ == TokenKind::qualifier && !blank_) return make(TokenKind::name, end);
  return at(end) == '!' ? make(TokenKind::qualifier, end + 1) : invalid();
}

/// The end of the brackets that open at `pos`, nested ones included; `pos` when they are not
/// closed. An apostrophe inside takes the next character as it is.
std::uint32_t Lexer::brackets_end(std::uint32_t pos) const noexcept {
  int depth = 0;
  for (std::uint32_t p = pos; p < text_.size(); ++p) {
    if (text_[p] == '\'')
      ++p;
    else if (text_[p] == '[')
      ++depth;
    else if (text_[p] == ']' && --depth == 0)
      return p + 1;
  }
  return pos;
}

Token Lexer::read_bracket() noexcept {
  const std::uint32_t end = brackets_end(begin_);
  if (end == begin_) return invalid();
  if (at(end) == '!') return make(TokenKind::qualifier, end + 1);
  if (text_.substr(end, 5) == "#REF!") return make(TokenKind::qualifier, end + 5);
  const std::uint32_t sheets = sheets_end(end);
  return sheets == end ? make(TokenKind::structured, end) : make(TokenKind::qualifier, sheets);
}

Token Lexer::read_hash() noexcept {
  if (!blank_ && ends_operand(last_)) return make(TokenKind::hash, begin_ + 1);
  const std::uint32_t length = error_constant_length(text_.substr(begin_));
  if (length == 0) return invalid();
  const std::uint32_t end = begin_ + length;
  std::uint32_t address_end = end;
  const WrittenArea area = area_;
  const bool qualifies = text_[end - 2] == 'F' && take_area(end, address_end);
  area_ = area;
  return make(qualifies ? TokenKind::qualifier : TokenKind::error, end);
}

Token Lexer::read_operator() noexcept {
  const char following = at(begin_ + 1);
  const auto one = [this](TokenKind kind) { return make(kind, begin_ + 1); };
  const auto two = [this](TokenKind kind) { return make(kind, begin_ + 2); };
  switch (text_[begin_]) {
    case '+':
      return one(TokenKind::plus);
    case '-':
      return one(TokenKind::minus);
    case '*':
      return one(TokenKind::multiply);
    case '/':
      return one(TokenKind::divide);
    case '^':
      return one(TokenKind::power);
    case '&':
      return one(TokenKind::join);
    case '%':
      return one(TokenKind::percent);
    case '=':
      return one(TokenKind::equal);
    case '<':
      if (following == '=') return two(TokenKind::less_equal);
      return following == '>' ? two(TokenKind::not_equal) : one(TokenKind::less);
    case '>':
      return following == '=' ? two(TokenKind::greater_equal) : one(TokenKind::greater);
    case '@':
      return one(TokenKind::at);
    case ':':
      return one(TokenKind::colon);
    case ',':
      return one(TokenKind::comma);
    case ';':
      return one(TokenKind::semicolon);
    case '(':
      return one(TokenKind::open);
    case ')':
      return one(TokenKind::close);
    case '{':
      return one(TokenKind::open_brace);
    case '}':
      return one(TokenKind::close_brace);
    default:
      return invalid();
  }
}

}  // namespace qto::formula
