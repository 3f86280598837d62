#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qto/formula/syntax_tree.hpp"

namespace qto::formula {

enum class PieceKind : std::uint8_t {
  literal,
  local_literal,  ///< shown to the author only: the marks "@" and "#"
  area,
  qualifier,   ///< into a linked book; its text depends on whether that book is open
  structured,  ///< shown to the author as written (`begin`, `length`); its `qualifier` stands
               ///< before
  name,        ///< as written, unless a table has that name
  single,      ///< "@" before a reference, which the next `covers` pieces write out
  spill,       ///< a reference with "#" after it, which the next `covers` pieces write out
};

/// A stretch of a formula's text.
struct Piece {
  PieceKind kind = PieceKind::literal;
  bool over_structured = false;  ///< single: `item` is a structured reference, not an area
  std::uint16_t covers = 0;
  std::uint32_t item = 0;       ///< into the list of its kind
  std::uint32_t qualifier = 0;  ///< single, spill, structured, name: into qualifiers, 0 for none
  std::uint32_t begin = 0;      ///< into literals
  std::uint32_t length = 0;
};

/// A formula text in pieces.
struct FormulaPieces {
  std::vector<Piece> pieces;
  std::string literals;
  std::vector<AreaRef> areas;
  std::vector<SheetQualifier> qualifiers{1};
  std::vector<StructuredRef> structured;

  std::string_view literal(const Piece& piece) const noexcept {
    return std::string_view(literals).substr(piece.begin, piece.length);
  }
};

/// Cuts a formula text without "=". What cannot be read stays a literal.
FormulaPieces cut_formula(std::string_view text, CellPos base);

/// Appends to `key` a form of the text that is equal for formulas that are the same relative to
/// their own cells, and for no others.
void append_formula_key(std::string& key, std::string_view text, CellPos base);

}  // namespace qto::formula
