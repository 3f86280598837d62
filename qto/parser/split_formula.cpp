#include <utility>

#include "qto/automation/error.hpp"
#include "qto/automation/text.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/parser/parser.hpp"
#include "qto/parser/scanner.hpp"

namespace qto {
namespace {

/// application | document ! item, whatever the pieces were taken for.
void mark_link(TokenTable& table, std::size_t i) {
  if (i + 3 > table.count()) throw NumberedFailure(9, "a link without its document and item");
  table.at(i).type = TokenType::pipe;
  if (i > 1) table.at(i - 1).type = TokenType::application;
  table.at(i + 1).type = TokenType::document;
  table.at(i + 3).type = TokenType::link;
}

}  // namespace

void Parser::split_formula(std::string_view formula, TokenTable& table) {
  Procedure proc("Parser", "split_formula");
  table.start(formula);
  scan_formula(table);
  for (std::size_t i = 1; i <= table.count(); ++i) {
    const Token token = table.at(i);
    const std::string_view text = trim_white_space(token.text);
    if (text.starts_with('\'') && is_not_dde_type(token.type)) {
      const std::vector<Token> columns = split_quoted_path_name(text);
      table.at(i) = columns.front();
      table.tokens.insert(table.tokens.begin() + static_cast<std::ptrdiff_t>(i),
                          columns.begin() + 1, columns.end());
    }
    if (table.at(i).text == "|" && !proc.step([&] { mark_link(table, i); })) {
      table.tokens
          .clear();  // half a table is none: its tokens would be taken for what they are not
      return;
    }
    if (table.at(i).type == TokenType::none) classify(table, i);
  }
}

void Parser::classify(TokenTable& table, std::size_t i) {
  Token& token = table.at(i);
  const std::string_view text = trim_white_space(token.text);
  const std::string_view next = i < table.count() ? table.at(i + 1).text : std::string_view();
  if (next == "!")
    token.type = TokenType::worksheet;
  else if (next == "(")
    token.type = check_for_dodgy_functions(text);
  if (token.type != TokenType::none) return;
  if (text.starts_with('#')) {
    token.type = TokenType::error_constant;
    return;
  }
  check_token_book_and_path(table, i);
  if (text == "TRUE" || text == "FALSE" || text::is_numeric(text)) {
    token.type = TokenType::constant;
    return;
  }
  if (token.type != TokenType::none) return;
  check_token_for_name(table, i);
  if (token.type == TokenType::none)
    token.type = is_range(text) ? TokenType::range : TokenType::possible_name;
}

void Parser::check_token_book_and_path(TokenTable& table, std::size_t i) {
  Procedure proc("Parser", "check_token_book_and_path");
  if (i > 1 && table.at(i - 1).text == "[") table.at(i).type = TokenType::workbook;
}

void Parser::check_token_for_name(TokenTable& table, std::size_t i) {
  Procedure proc("Parser", "check_token_for_name");
  std::string book;
  std::string sheet;
  if (i > 1 && table.at(i - 1).text == "!") {
    if (i >= 5 && table.at(i - 4).type == TokenType::workbook) book = table.at(i - 4).text;
    if (i >= 3 && table.at(i - 2).type == TokenType::worksheet) sheet = table.at(i - 2).text;
  }
  table.at(i).type =
      name_type(trim_white_space(table.at(i).text), std::move(book), std::move(sheet));
}

}  // namespace qto
