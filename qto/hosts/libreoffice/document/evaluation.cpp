#include "qto/hosts/libreoffice/document/evaluation.hpp"

#include <array>
#include <charconv>
#include <optional>

#include "qto/automation/text.hpp"
#include "qto/formula/lexer.hpp"
#include "qto/formula/qualifier.hpp"
#include "qto/hosts/libreoffice/document/scratch.hpp"
#include "qto/hosts/libreoffice/formulas/to_office.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

using formula::Lexer;
using formula::Token;
using formula::TokenKind;

class PieceNames final : public PieceSurroundings {
 public:
  PieceNames(Document& document, const SheetSlot& sheet, CellPos at)
      : document_(document), sheet_(sheet), at_(at) {}

  const FunctionNames& functions() const override { return document_.others().function_names(); }
  /// What depends on the formula's cell must be written out: it is evaluated in another.
  std::optional<std::string> name(std::string_view name) const override {
    const NameEntry* entry = document_.names().resolve(name, &sheet_);
    if (!entry || (!entry->relative && !entry->sheet)) return std::nullopt;
    return document_.refers_to(*entry, at_);
  }
  std::string full_name(std::string_view book) const override {
    const Document* open = document_.others().find_document(book);
    if (open && !open->is_new()) return open->file();
    for (const std::string& url : document_.links()) {
      const LinkTarget target = link_target(url);
      if (text::equal_fold(target.name, book)) return target.folder + target.name;
    }
    return "";
  }

 private:
  Document& document_;
  const SheetSlot& sheet_;
  CellPos at_;
};

std::string_view body_of(std::string_view text) {
  text = text::trim(text);
  if (text.starts_with('=')) text.remove_prefix(1);
  return text::trim(text);
}

/// The sheet of an open document that a qualifier names; null when it is none.
SheetSlot* sheet_of(Document& document, std::string_view word) {
  const formula::SheetQualifier qualifier = formula::parse_qualifier(word);
  if (qualifier.broken || qualifier.external != 0 || !qualifier.last_sheet.empty()) return nullptr;
  Document* owner = &document;
  if (!qualifier.book.empty()) {
    owner = document.others().find_document(qualifier.book);
    if (!owner && text::equal_fold(qualifier.book, document.name())) owner = &document;
  }
  return owner && !qualifier.sheet.empty() ? owner->find_sheet(qualifier.sheet) : nullptr;
}

/// Reads areas with commas between them, all of one sheet; those with a space between them meet.
bool read_areas(Document& document, SheetSlot& own, std::string_view text, Evaluated& found) {
  Lexer lexer(text);
  SheetSlot* common = nullptr;
  bool meet = false;
  for (Token token = lexer.next();; token = lexer.next()) {
    SheetSlot* sheet = &own;
    if (token.kind == TokenKind::qualifier) {
      sheet = sheet_of(document, lexer.text(token));
      token = lexer.next();
    }
    if (!sheet || token.kind != TokenKind::area || (common && common != sheet)) return false;
    common = sheet;
    const Rect block = lexer.area().rect();
    if (meet) {
      const auto both = found.blocks.back().intersect(block);
      if (!both) return false;
      found.blocks.back() = *both;
    } else {
      found.blocks.push_back(block);
    }
    Lexer ahead = lexer;
    const Token following = ahead.next();
    if (following.kind == TokenKind::end) break;
    meet = following.kind == TokenKind::area || following.kind == TokenKind::qualifier;
    if (!meet && following.kind != TokenKind::comma) return false;
    if (!meet) lexer = ahead;
  }
  found.sheet = Ref<SheetSlot>(common);
  return true;
}

/// Where a piece is evaluated: in the formula's own row or column when it meets blocks there.
CellPos scratch_for(const OfficePiece& piece, SheetSlot& sheet, CellPos at, EvaluationMode mode) {
  CellPos pos = scratch_cell;
  if (mode == EvaluationMode::array) return pos;
  if (piece.needs_row)
    pos.row = at.row;
  else if (piece.needs_column)
    pos.column = at.column;
  return pos == at || sheet.cells().find(pos) ? scratch_cell : pos;
}

std::string between(const char* before, const std::string& text, const char* after) {
  return before + text + after;
}

/// Sheet and block of a piece that is a reference, as the suite tells them.
bool find_target(Document& document, Scratch& scratch, const std::string& piece, Evaluated& found) {
  if (scratch.number(between("ISREF(", piece, ")"), 0) != 1) return false;
  const Variant told =
      scratch("_xlfn.SHEET(" + piece + ")&\" \"&MIN(ROW(" + piece + "))&\" \"&MIN(COLUMN(" + piece +
              "))&\" \"&ROWS(" + piece + ")&\" \"&COLUMNS(" + piece + ")");
  std::int32_t numbers[5];
  const std::string& text = told.text();
  const char* next = text.data();
  const char* const end = next + text.size();
  for (std::int32_t& number : numbers) {
    while (next != end && *next == ' ') ++next;
    const auto [rest, problem] = std::from_chars(next, end, number);
    if (problem != std::errc()) return false;
    next = rest;
  }
  const auto [sheet, row, column, rows, columns] = std::to_array(numbers);
  if (sheet < 1 || sheet > std::ssize(document.sheets())) return false;
  found.sheet = document.sheets()[sheet - 1];
  found.blocks = {{{row, column}, {row + rows - 1, column + columns - 1}}};
  return true;
}

/// 1 and 0 may be TRUE and FALSE.
Variant with_logical(Scratch& scratch, Variant value, const std::string& test) {
  const double* number = value.get_if<double>();
  if (!number || (*number != 0 && *number != 1) || scratch.number(test, 0) != 1) return value;
  return *number == 1;
}

// The suite calculates over all elements inside some functions' arguments, LOOKUP's among them; a
// cell of a document that is only read cannot hold an array formula. TRUE and FALSE among elements
// are 1 and 0 to it.
Variant array_value(Scratch& scratch, const std::string& piece) {
  constexpr double most_elements = 10'000;
  const double rows = scratch.number(between("SUMPRODUCT(ROWS(", piece, "))"), 0);
  const double columns =
      rows > 0 ? scratch.number(between("SUMPRODUCT(COLUMNS(", piece, "))"), 0) : 0;
  if (rows < 1 || columns < 1)
    return with_logical(scratch, scratch(between("LOOKUP(1,{1},IF({1},", piece, "))")),
                        between("ISLOGICAL(", piece, ")"));
  if (rows * columns > most_elements) fail("The array has too many elements: " + piece);
  const auto values = make_ref<VariantArray>(static_cast<int>(rows), static_cast<int>(columns));
  for (int r = 1; r <= values->rows(); ++r)
    for (int c = 1; c <= values->columns(); ++c)
      values->at(r, c) = scratch("LOOKUP(1,{1},INDEX(" + piece + "," + std::to_string(r) + "," +
                                 std::to_string(c) + "))");
  if (rows == 1 && columns == 1)
    return with_logical(scratch, values->at(1, 1), between("ISLOGICAL(", piece, ")"));
  return Variant(Ref<const VariantArray>(values));
}

}  // namespace

bool find_reference(Document& document, SheetSlot& sheet, CellPos at, std::string_view text,
                    Evaluated& found) {
  if (read_areas(document, sheet, text, found)) return true;
  found = {};
  Lexer lexer(text);
  const Token token = lexer.next();
  if (token.kind != TokenKind::name || token.end != text.size()) return false;
  const NameEntry* entry = document.names().resolve(text, &sheet);
  if (!entry) return false;
  SheetSlot& seen_from = entry->scope ? *entry->scope : sheet;
  return read_areas(document, seen_from, document.refers_to(*entry, at), found);
}

Evaluated evaluate(Document& document, SheetSlot& sheet, CellPos at, std::string_view text,
                   EvaluationMode mode) {
  const std::string_view body = body_of(text);
  Evaluated out;
  if (body.empty() || find_reference(document, sheet, at, body, out)) return out;
  out = {};
  sheet.cells();  // read before anything stands in a cell at the end of the grid
  guarded("Evaluating a formula", [&] {
    const OfficePiece piece = to_office(body, at, PieceNames(document, sheet, at));
    Scratch scratch(document, sheet, scratch_for(piece, sheet, at, mode));
    if (find_target(document, scratch, piece.text, out)) return;
    out.value =
        mode == EvaluationMode::array
            ? array_value(scratch, piece.text)
            : with_logical(scratch, scratch(piece.text), between("ISLOGICAL(", piece.text, ")"));
  });
  return out;
}

}  // namespace qto::libreoffice
