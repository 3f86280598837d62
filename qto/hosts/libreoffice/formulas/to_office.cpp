#include "qto/hosts/libreoffice/formulas/to_office.hpp"

#include <array>

#include "qto/automation/text.hpp"
#include "qto/formula/lexer.hpp"
#include "qto/formula/qualifier.hpp"
#include "qto/formula/token_values.hpp"

namespace qto::libreoffice {
namespace {

using formula::Lexer;
using formula::Token;
using formula::TokenKind;

/// The suite's parser does not know error constants: expressions that give them.
std::string_view expression_of(std::string_view error) {
  static constexpr std::array<std::array<std::string_view, 2>, 7> table{{
      {"#N/A", "NA()"},
      {"#DIV/0!", "(1/0)"},
      {"#REF!", "INDIRECT(\"\")"},
      {"#VALUE!", "(\"x\"+0)"},
      {"#NAME?", "qto.no.such.name"},
      {"#NUM!", "(10^308*100)"},
      {"#NULL!", "(A1 B2)"},
  }};
  for (const auto& [constant, expression] : table)
    if (error == constant) return expression;
  return "(\"x\"+0)";
}

/// The token that follows, without moving the lexer.
Token peek(Lexer lexer) { return lexer.next(); }

class PieceWriter {
 public:
  PieceWriter(std::string_view text, CellPos at, const PieceSurroundings& book)
      : text_(text), at_(at), book_(book), lexer_(text) {}

  OfficePiece write() {
    std::size_t done = 0;
    for (;;) {
      const Token token = lexer_.next();
      piece_.text.append(text_.substr(done, token.begin - done));
      if (token.kind == TokenKind::end || token.kind == TokenKind::invalid) {
        piece_.text.append(text_.substr(token.begin));
        return std::move(piece_);
      }
      done = append(token);
    }
  }

 private:
  /// Writes a token, or a call without arguments; answers where the text goes on.
  std::size_t append(const Token& token) {
    const std::string_view word = lexer_.text(token);
    switch (token.kind) {
      case TokenKind::function:
        return append_function(token, word);
      case TokenKind::error:
        piece_.text.append(expression_of(text::upper_ascii(word)));
        break;
      case TokenKind::qualifier:
        append_qualifier(word);
        break;
      case TokenKind::name:
        append_name(word);
        break;
      case TokenKind::area:
        note_shape(lexer_.area().rect());
        piece_.text.append(word);
        break;
      default:
        piece_.text.append(word);
    }
    qualified_ = token.kind == TokenKind::qualifier;
    return token.end;
  }

  std::size_t append_function(const Token& token, std::string_view word) {
    const std::string upper = text::upper_ascii(word);
    if (upper == "ROW" || upper == "COLUMN") {
      Lexer ahead = lexer_;
      if (ahead.next().kind == TokenKind::open && peek(ahead).kind == TokenKind::close) {
        lexer_.next();
        const Token close = lexer_.next();
        piece_.text.append(std::to_string(upper == "ROW" ? at_.row : at_.column));
        return close.end;
      }
    }
    piece_.text.append(book_.functions().stored(upper));
    return token.end;
  }

  void append_qualifier(std::string_view word) {
    const formula::SheetQualifier qualifier = formula::parse_qualifier(word);
    // Of a span in apostrophes the parser takes the last sheet alone in them.
    if (qualifier.book.empty() && qualifier.external == 0 && !qualifier.last_sheet.empty() &&
        word.starts_with('\'') && !needs_quotes(qualifier.sheet)) {
      piece_.text.append(qualifier.sheet).append(":");
      append_sheet_name(piece_.text, qualifier.last_sheet);
      piece_.text.push_back('!');
      return;
    }
    const std::string full = qualifier.book.empty() || word.find('/') != std::string_view::npos
                                 ? ""
                                 : book_.full_name(qualifier.book);
    if (full.empty() || qualifier.sheet.empty()) {
      piece_.text.append(word);
      return;
    }
    const std::size_t name = full.find_last_of("/\\") + 1;
    std::string sheets = full.substr(0, name) + "[" + full.substr(name) + "]" + qualifier.sheet;
    if (!qualifier.last_sheet.empty()) sheets += ":" + qualifier.last_sheet;
    append_sheet_name(piece_.text, sheets);
    piece_.text.push_back('!');
  }

  void append_name(std::string_view word) {
    if (qualified_ || formula::boolean_value(word)) {
      piece_.text.append(word);
      return;
    }
    const auto meant = book_.name(word);
    if (!meant) {
      piece_.text.append(word);
      return;
    }
    const Token last = peek(Lexer(*meant));
    Lexer inner(*meant);
    for (Token token = inner.next();
         token.kind != TokenKind::end && token.kind != TokenKind::invalid; token = inner.next())
      if (token.kind == TokenKind::area) note_shape(inner.area().rect());
    const bool simple = last.kind == TokenKind::area && last.end == meant->size();
    piece_.text.append(simple ? *meant : "(" + *meant + ")");
  }

  void note_shape(const Rect& block) {
    piece_.needs_row = piece_.needs_row || (block.columns() == 1 && block.rows() > 1);
    piece_.needs_column = piece_.needs_column || (block.rows() == 1 && block.columns() > 1);
  }

  std::string_view text_;
  CellPos at_;
  const PieceSurroundings& book_;
  Lexer lexer_;
  OfficePiece piece_;
  bool qualified_ = false;
};

}  // namespace

OfficePiece to_office(std::string_view text, CellPos at, const PieceSurroundings& book) {
  return PieceWriter(text, at, book).write();
}

}  // namespace qto::libreoffice
