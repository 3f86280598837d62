#include "qto/formula/formula_pieces.hpp"

#include "qto/automation/text.hpp"
#include "qto/formula/function_name.hpp"
#include "qto/formula/lexer.hpp"
#include "qto/formula/qualifier.hpp"
#include "qto/formula/reference_text.hpp"
#include "qto/formula/structured_reference.hpp"

namespace qto::formula {
namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

class Cutter {
 public:
  Cutter(std::string_view text, CellPos base) : text_(text) {
    Lexer lexer(text);
    do {
      tokens_.push_back({lexer.next(), 0});
      if (tokens_.back().kind != TokenKind::area) continue;
      tokens_.back().area = static_cast<std::uint32_t>(out_.areas.size());
      out_.areas.push_back(relative_area(lexer.area(), base));
    } while (kind(tokens_.size() - 1) != TokenKind::end &&
             kind(tokens_.size() - 1) != TokenKind::invalid);
  }

  FormulaPieces cut() {
    while (kind(next_) != TokenKind::end && kind(next_) != TokenKind::invalid) cut_token();
    literal(text_.substr(end_));
    return std::move(out_);
  }

 private:
  /// A token, and for areas which one.
  struct Read : Token {
    Read(const Token& token, std::uint32_t area_number) : Token(token), area(area_number) {}
    std::uint32_t area;
    bool dropped = false;     // a parenthesis of SINGLE() or ANCHORARRAY()
    bool hash_after = false;  // the end of an ANCHORARRAY() that is written out as "#"
  };

  TokenKind kind(std::size_t index) const {
    return index < tokens_.size() ? tokens_[index].kind : TokenKind::end;
  }
  std::string_view text(const Token& token) const {
    return text_.substr(token.begin, token.end - token.begin);
  }

  void cut_token() {
    const std::size_t index = next_;
    const TokenKind first = kind(index);
    if (first == TokenKind::at) {
      const std::size_t last = reference_end(index + 1);
      const bool whole =
          last != none && kind(last) != TokenKind::colon && kind(last) != TokenKind::hash;
      if (!whole || !mark_reference(PieceKind::single, index + 1, last)) emit(index);
      return;
    }
    if (first == TokenKind::function && cut_mark_function(index)) return;
    const std::size_t last = reference_end(index);
    if (last != none && kind(last) == TokenKind::hash &&
        mark_reference(PieceKind::spill, index, last))
      return move_past(last);
    emit(index);
  }

  void move_past(std::size_t index) {
    end_ = tokens_[index].end;
    next_ = index + 1;
  }

  /// Past the reference that starts at a token: an area or structured reference, with its
  /// qualifier.
  std::size_t reference_end(std::size_t index) const {
    if (kind(index) == TokenKind::qualifier) ++index;
    const bool reference = kind(index) == TokenKind::area || kind(index) == TokenKind::structured;
    return reference ? index + 1 : none;
  }

  /// Emits a mark over the reference between two tokens and moves past it; false when its target
  /// cannot be told.
  bool mark_reference(PieceKind mark, std::size_t first, std::size_t last) {
    const Read& operand = tokens_[last - 1];
    Piece piece;
    piece.kind = mark;
    piece.over_structured = operand.kind == TokenKind::structured;
    if (piece.over_structured && mark == PieceKind::spill) return false;
    if (kind(first) == TokenKind::qualifier) {
      SheetQualifier qualifier = parse_qualifier(text(tokens_[first]));
      const bool own_sheet = qualifier.external == 0 && qualifier.book.empty() &&
                             qualifier.last_sheet.empty() && !qualifier.broken &&
                             !qualifier.sheet.empty();
      if (!own_sheet || piece.over_structured) return false;
      piece.qualifier = static_cast<std::uint32_t>(out_.qualifiers.size());
      out_.qualifiers.push_back(std::move(qualifier));
    }
    if (piece.over_structured) {
      auto structured = parse_structured(text(operand));
      if (!structured) return false;
      piece.item = static_cast<std::uint32_t>(out_.structured.size());
      out_.structured.push_back(std::move(*structured));
    } else {
      piece.item = operand.area;
    }
    blanks_before(tokens_[next_]);
    const std::size_t at = out_.pieces.size();
    out_.pieces.push_back(piece);
    next_ = first;
    end_ = tokens_[first].begin;
    while (next_ < last) emit(next_);
    if (mark == PieceKind::spill) mark_literal("#");
    out_.pieces[at].covers = static_cast<std::uint16_t>(out_.pieces.size() - at - 1);
    merge_from_ = out_.pieces.size();
    return true;
  }

  /// SINGLE(x) and ANCHORARRAY(x) are "@x" and "x#".
  bool cut_mark_function(std::size_t index) {
    const MarkFunction mark = mark_function(text(tokens_[index]));
    if (mark == MarkFunction::none) return false;
    const std::size_t close = closing(index + 1);
    if (close == none) return false;
    const std::size_t last = reference_end(index + 2);
    const PieceKind piece = mark == MarkFunction::single ? PieceKind::single : PieceKind::spill;
    blanks_before(tokens_[index]);
    if (last == close && mark_reference(piece, index + 2, close)) {
      move_past(close);
      return true;
    }
    if (stands_alone(index + 2, close)) tokens_[index + 1].dropped = tokens_[close].dropped = true;
    if (mark == MarkFunction::single) mark_literal("@");
    if (mark == MarkFunction::anchor_array) tokens_[close].hash_after = true;
    end_ = tokens_[index].end;
    next_ = index + 1;
    return true;
  }

  /// A name or one call: the mark needs no parentheses then.
  bool stands_alone(std::size_t first, std::size_t close) {
    if (kind(first) == TokenKind::qualifier) ++first;
    if (kind(first) == TokenKind::function) return closing(first + 1) + 1 == close;
    const bool operand = kind(first) == TokenKind::name || kind(first) == TokenKind::area ||
                         kind(first) == TokenKind::structured;
    return operand && first + 1 == close;
  }

  /// The token that closes the parenthesis at `open`.
  std::size_t closing(std::size_t open) {
    if (closing_.empty()) {
      closing_.assign(tokens_.size(), none);
      std::vector<std::size_t> opened;
      for (std::size_t i = 0; i < tokens_.size(); ++i) {
        if (kind(i) == TokenKind::open) opened.push_back(i);
        if (kind(i) != TokenKind::close || opened.empty()) continue;
        closing_[opened.back()] = i;
        opened.pop_back();
      }
    }
    return open < closing_.size() ? closing_[open] : none;
  }

  /// Emits one token with the blanks before it and moves past it.
  void emit(std::size_t index) {
    const Read& token = tokens_[index];
    blanks_before(token);
    end_ = token.end;
    next_ = index + 1;
    if (token.dropped) {
    } else if (token.kind == TokenKind::area) {
      add(PieceKind::area, token.area);
    } else if (token.kind == TokenKind::structured) {
      emit_structured(token);
    } else if (token.kind == TokenKind::qualifier) {
      emit_qualifier(token);
    } else if (token.kind == TokenKind::at || token.kind == TokenKind::hash) {
      mark_literal(text(token));
    } else if (token.kind == TokenKind::function) {
      literal(shown_function_name(text(token)));
    } else if (token.kind == TokenKind::name) {
      emit_name(text(token));
    } else {
      literal(text(token));
    }
    if (token.hash_after) mark_literal("#");
  }

  void emit_structured(const Token& token) {
    auto structured = parse_structured(text(token));
    const auto before = qualifier_before();
    if (!structured || !before) return literal(text(token));
    add(PieceKind::structured, static_cast<std::uint32_t>(out_.structured.size()));
    out_.structured.push_back(std::move(*structured));
    out_.pieces.back().qualifier = *before;
    keep(out_.pieces.back(), text(token));
  }

  /// The qualifier in front of the token that is being emitted, 0 for none; nothing when its text
  /// has been taken as it is.
  std::optional<std::uint32_t> qualifier_before() const {
    if (next_ < 2 || kind(next_ - 2) != TokenKind::qualifier) return 0;
    if (out_.pieces.empty() || out_.pieces.back().kind != PieceKind::qualifier) return std::nullopt;
    return out_.pieces.back().item;
  }

  void emit_qualifier(const Token& token) {
    SheetQualifier qualifier = parse_qualifier(text(token));
    const bool own_book = qualifier.book.empty() && text(token).find('[') < 2;
    if (qualifier.external == 0 && !own_book) return literal(text(token));
    add(PieceKind::qualifier, static_cast<std::uint32_t>(out_.qualifiers.size()));
    out_.qualifiers.push_back(std::move(qualifier));
  }

  void emit_name(std::string_view name) {
    const bool constant =
        text::equal_ascii_nocase(name, "TRUE") || text::equal_ascii_nocase(name, "FALSE");
    if (constant) return literal(text::upper_ascii(name));
    const std::string_view shown = without_prefix(name);
    const auto before = qualifier_before();
    // With a prefix it is a parameter.
    if (!before || shown.size() != name.size()) return literal(shown);
    add(PieceKind::name, 0);
    out_.pieces.back().qualifier = *before;
    keep(out_.pieces.back(), shown);
  }

  void blanks_before(const Token& token) {
    if (token.begin > end_) literal(text_.substr(end_, token.begin - end_));
    end_ = token.begin;
  }

  void add(PieceKind kind, std::uint32_t item) {
    Piece piece;
    piece.kind = kind;
    piece.item = item;
    out_.pieces.push_back(piece);
  }

  void keep(Piece& piece, std::string_view text) {
    piece.begin = static_cast<std::uint32_t>(out_.literals.size());
    piece.length = static_cast<std::uint32_t>(text.size());
    out_.literals += text;
  }

  void literal(std::string_view text) {
    if (text.empty()) return;
    if (out_.pieces.size() > merge_from_ && out_.pieces.back().kind == PieceKind::literal) {
      out_.literals += text;
      out_.pieces.back().length += static_cast<std::uint32_t>(text.size());
      return;
    }
    add(PieceKind::literal, 0);
    keep(out_.pieces.back(), text);
  }

  void mark_literal(std::string_view text) {
    add(PieceKind::local_literal, 0);
    keep(out_.pieces.back(), text);
  }

  std::string_view text_;
  std::vector<Read> tokens_;
  std::vector<std::size_t> closing_;  // by opening parenthesis, made when first asked for
  std::size_t next_ = 0;              // token to be cut
  std::uint32_t end_ = 0;             // of the text that has been cut
  std::size_t merge_from_ = 0;        // pieces before this one take no more text
  FormulaPieces out_;
};

}  // namespace

FormulaPieces cut_formula(std::string_view text, CellPos base) { return Cutter(text, base).cut(); }

}  // namespace qto::formula
