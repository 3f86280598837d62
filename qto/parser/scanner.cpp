#include "qto/parser/scanner.hpp"

#include <array>

#include "qto/automation/text.hpp"
#include "qto/diagnostics/procedure.hpp"

namespace qto {
namespace {

constexpr std::array<bool, 256> delimiter_table() {
  std::array<bool, 256> table{};
  for (const char c : std::string_view("[]()+-*/^&!=,%<>?@\\{}|~"))
    table[static_cast<unsigned char>(c)] = true;
  return table;
}
constexpr std::array<bool, 256> is_delimiter = delimiter_table();

/// One pass over the characters; a token is a stretch of the formula, so nothing is copied.
class Scanner {
 public:
  explicit Scanner(TokenTable& table) : table_(table), formula_(table.text()) {}

  void run() {
    std::size_t i = formula_.empty() ? 0 : 1;
    for (begin_ = i; i < formula_.size(); ++i) {
      const char c = formula_[i];
      if (c == '"') {
        quote(i);
        continue;
      }
      if (in_string_) continue;
      if (c == '\'') in_quotes_ = !in_quotes_;
      if (!in_quotes_ && delimits(c)) {
        emit_pending(i);
        emit(i, i + 1, TokenType::end_token);
        begin_ = i + 1;
      }
    }
    emit_pending(formula_.size());
  }

 private:
  /// A semicolon separates the rows of an array constant and is plain text everywhere else.
  bool delimits(char c) {
    if (c == '{') ++braces_;
    if (c == '}' && braces_ > 0) --braces_;
    return is_delimiter[static_cast<unsigned char>(c)] || (c == ';' && braces_ > 0);
  }

  void quote(std::size_t i) {
    if (in_string_) {
      emit(begin_, i + 1, TokenType::string);
      begin_ = i + 1;
    } else {
      begin_ = i;  // what was pending before the quote is dropped
    }
    in_string_ = !in_string_;
  }

  void emit_pending(std::size_t end) {
    if (end > begin_) emit(begin_, end, TokenType::none);
  }

  /// A range operator between a reference and a function call (A1:INDEX(…), OFFSET(…):B9) belongs
  /// to neither: the references on both sides are precedents of their own.
  void emit(std::size_t begin, std::size_t end, TokenType type) {
    const std::string_view text = std::string_view(formula_).substr(begin, end - begin);
    if (type == TokenType::none && text.find(':') != std::string_view::npos) {
      const bool before_call = end < formula_.size() && formula_[end] == '(';
      const std::size_t colon = before_call ? text.rfind(':') : 0;
      const bool after_call = text.front() == ':' && text.size() > 1;
      if (before_call || after_call) {
        if (colon > 0) add(text.substr(0, colon), TokenType::none);
        add(text.substr(colon, 1), TokenType::end_token);
        if (colon + 1 < text.size()) add(text.substr(colon + 1), TokenType::none);
        return;
      }
    }
    add(text, type);
  }

  void add(std::string_view text, TokenType type) { table_.tokens.push_back({text, type}); }

  TokenTable& table_;
  const std::string& formula_;
  std::size_t begin_ = 0;
  int braces_ = 0;
  bool in_string_ = false;
  bool in_quotes_ = false;
};

}  // namespace

void scan_formula(TokenTable& table) {
  Procedure proc("Parser", "get_tokens");
  Scanner(table).run();
}

std::vector<Token> split_quoted_path_name(std::string_view text) {
  Procedure proc("Parser", "split_quoted_path_name");
  if (text.starts_with('\'')) text.remove_prefix(1);
  if (text.ends_with('\'')) text.remove_suffix(1);
  const std::size_t open = text.find('[');
  const std::size_t close = text.find(']');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
    const std::size_t separator = text.find_last_of("\\/");
    if (separator == std::string_view::npos) return {{text, TokenType::worksheet}};
    return {{text.substr(0, separator), TokenType::path_name},
            {text.substr(separator, 1), TokenType::end_token},
            {text.substr(separator + 1), TokenType::workbook}};
  }
  std::vector<Token> columns;
  if (open > 0) columns.push_back({text.substr(0, open), TokenType::path_name});
  columns.push_back({text.substr(open, 1), TokenType::end_token});
  columns.push_back({text.substr(open + 1, close - open - 1), TokenType::workbook});
  columns.push_back({text.substr(close, 1), TokenType::end_token});
  if (close + 1 < text.size()) columns.push_back({text.substr(close + 1), TokenType::worksheet});
  return columns;
}

TokenType check_for_dodgy_functions(std::string_view name) noexcept {
  Procedure proc("Parser", "check_for_dodgy_functions");
  struct Special {
    std::string_view name;
    TokenType type;
  };
  static constexpr Special specials[] = {
      {"IF", TokenType::if_function},   {"INDEX", TokenType::index},
      {"MATCH", TokenType::match},      {"VLOOKUP", TokenType::vlookup},
      {"LOOKUP", TokenType::lookup},    {"HLOOKUP", TokenType::hlookup},
      {"SUMIF", TokenType::sumif},      {"OFFSET", TokenType::offset},
      {"INDIRECT", TokenType::indirect}};
  for (const Special& special : specials) {
    if (name.size() != special.name.size()) continue;
    if (name == special.name) return special.type;
    if (text::equal_ascii_nocase(name, special.name)) return TokenType::own_text;
  }
  return TokenType::function;
}

bool is_not_dde_type(TokenType type) noexcept {
  Procedure proc("Parser", "is_not_dde_type");
  return type != TokenType::application && type != TokenType::document && type != TokenType::link;
}

}  // namespace qto
