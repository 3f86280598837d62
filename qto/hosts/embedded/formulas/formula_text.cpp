#include "qto/hosts/embedded/formulas/formula_text.hpp"

#include "qto/formula/reference_text.hpp"
#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/formulas/link_qualifier.hpp"
#include "qto/hosts/embedded/formulas/table_target.hpp"

namespace qto::embedded {
namespace {

/// The book that a qualifier in front of a table leads to; null when it cannot be seen.
const Book* book_of(const formula::SheetQualifier& qualifier, const RenderContext& context) {
  return qualifier.external == 0 ? context.book : find_open_link(context, qualifier.external);
}

void append_target(std::string& out, const StructuredTarget& target, const Rect& rect,
                   const Book& book, const RenderContext& context) {
  const bool other_book = &book != context.book;
  if (other_book) {
    append_sheet_name(out, '[' + book.name + ']' + target.table->sheet->name);
    out.push_back('!');
  } else if (context.on_any_sheet || target.table->sheet != context.sheet) {
    append_sheet_name(out, target.table->sheet->name);
    out.push_back('!');
  }
  append_rect(out, rect, context.on_any_sheet, context.on_any_sheet);
}

StructuredTarget resolve(const formula::StructuredRef& ref, const Book* book,
                         const RenderContext& context) {
  if (book && context.sheet) return resolve_structured(ref, *book, *context.sheet, context.at);
  StructuredTarget nothing;
  nothing.error = ErrorValue::ref;
  return nothing;
}

/// The one cell of the block that lies in the formula's own row or column, or the block.
Rect intersect_implicitly(const Rect& block, CellPos at) noexcept {
  if (block.columns() == 1 && at.row >= block.first.row && at.row <= block.last.row)
    return Rect::cell({at.row, block.first.column});
  if (block.rows() == 1 && at.column >= block.first.column && at.column <= block.last.column)
    return Rect::cell({block.first.row, at.column});
  return block;
}

/// The block that the array formula anchored in the cell fills, or the cell.
Rect spilled_block(const Sheet* sheet, CellPos anchor) {
  const FormulaId id = sheet ? sheet->formula_at(anchor) : 0;
  if (id != 0) {
    const FormulaRecord& record = sheet->book().formula(id);
    if (record.kind == FormulaKind::array && record.block.first == anchor) return record.block;
  }
  return Rect::cell(anchor);
}

/// Appends the block that a reference to a table denotes; "T[a]:T[b]" is one block.
void append_structured(std::string& out, const formula::StructuredRef& first,
                       const formula::StructuredRef* last, const Book& book,
                       const RenderContext& context) {
  const StructuredTarget target = resolve(first, &book, context);
  const StructuredTarget end = last ? resolve(*last, &book, context) : target;
  if (target.error || end.error || target.table->sheet != end.table->sheet) {
    out += error_text(target.error.value_or(end.error.value_or(ErrorValue::value)));
    return;
  }
  append_target(out, target, enclosing(target.rect, end.rect), book, context);
}

void append_marked(std::string& out, const formula::FormulaPieces& formula,
                   const formula::Piece& piece, const RenderContext& context) {
  if (piece.over_structured) {
    const StructuredTarget target = resolve(formula.structured[piece.item], context.book, context);
    if (target.error)
      out += error_text(*target.error);
    else
      append_target(out, target, intersect_implicitly(target.rect, context.at), *context.book,
                    context);
    return;
  }
  const Sheet* sheet = context.sheet;
  if (piece.qualifier != 0) {
    const std::string& name = formula.qualifiers[piece.qualifier].sheet;
    append_sheet_name(out, name);
    out.push_back('!');
    sheet = context.book ? context.book->find_sheet(name) : nullptr;
  }
  const Rect rect = formula.areas[piece.item].resolve(context.at);
  append_rect(out, piece.kind == formula::PieceKind::single ? intersect_implicitly(rect, context.at)
                                                            : spilled_block(sheet, rect.first));
}

/// Writes pieces out for one cell.
class PieceWriter {
 public:
  PieceWriter(std::string& out, const formula::FormulaPieces& formula, const RenderContext& context,
              TextForm form)
      : out_(out), formula_(formula), context_(context), form_(form) {}

  void write() {
    while (next_ < formula_.pieces.size()) write(formula_.pieces[next_++]);
  }

 private:
  void write(const formula::Piece& piece) {
    switch (piece.kind) {
      case formula::PieceKind::literal:
        return write_text(piece);
      case formula::PieceKind::local_literal:
        if (form_ != TextForm::formula) write_text(piece);
        return;
      case formula::PieceKind::area:
        return form_ == TextForm::r1c1
                   ? formula::append_area_r1c1(out_, formula_.areas[piece.item], context_.at)
                   : formula::append_area(out_, formula_.areas[piece.item], context_.at);
      case formula::PieceKind::qualifier:
        if (!write_qualified_table())
          append_link_qualifier(out_, formula_.qualifiers[piece.item], context_);
        return;
      case formula::PieceKind::structured:
      case formula::PieceKind::name:
        if (!write_table(piece)) write_text(piece);
        return;
      case formula::PieceKind::single:
      case formula::PieceKind::spill:
        return write_marked(piece);
    }
  }

  void write_text(const formula::Piece& piece) { out_.append(formula_.literal(piece)); }

  void write_marked(const formula::Piece& piece) {
    if (form_ == TextForm::formula) {
      append_marked(out_, formula_, piece, context_);
      next_ += piece.covers;
    } else if (piece.kind == formula::PieceKind::single) {
      out_.push_back('@');
    }
  }

  /// A table of another book that can be seen tells its own place, whatever stands before it.
  bool write_qualified_table() {
    if (next_ == formula_.pieces.size()) return false;
    if (write_table(formula_.pieces[next_++])) return true;
    --next_;
    return false;
  }

  /// Writes out the block of a table; false when the reference stays as written.
  bool write_table(const formula::Piece& piece) {
    if (form_ != TextForm::formula || !context_.sheet) return false;
    const Book* book = book_of(formula_.qualifiers[piece.qualifier], context_);
    if (piece.kind == formula::PieceKind::structured) {
      if (!book) return false;
      append_structured(out_, formula_.structured[piece.item], range_end(piece), *book, context_);
      return true;
    }
    if (piece.kind != formula::PieceKind::name || !book || book->tables().empty()) return false;
    const std::string_view name = formula_.literal(piece);
    if (!book->find_table(name)) return false;
    append_structured(out_, {std::string(name), 0, "", ""}, nullptr, *book, context_);
    return true;
  }

  /// The other end of a block between two references to tables; moves past it.
  const formula::StructuredRef* range_end(const formula::Piece& first) {
    const auto kind_at = [this](std::size_t index) {
      return index < formula_.pieces.size() ? formula_.pieces[index].kind
                                            : formula::PieceKind::local_literal;
    };
    if (kind_at(next_) != formula::PieceKind::literal ||
        formula_.literal(formula_.pieces[next_]) != ":")
      return nullptr;
    std::size_t end = next_ + 1;
    if (kind_at(end) == formula::PieceKind::qualifier) ++end;
    if (kind_at(end) != formula::PieceKind::structured) return nullptr;
    const formula::Piece& last = formula_.pieces[end];
    if (formula_.qualifiers[last.qualifier].external !=
        formula_.qualifiers[first.qualifier].external)
      return nullptr;
    next_ = end + 1;
    return &formula_.structured[last.item];
  }

  std::string& out_;
  const formula::FormulaPieces& formula_;
  const RenderContext& context_;
  TextForm form_;
  std::size_t next_ = 0;
};

}  // namespace

void append_pieces(std::string& out, const formula::FormulaPieces& formula,
                   const RenderContext& context, TextForm form) {
  out.push_back('=');
  PieceWriter(out, formula, context, form).write();
}

}  // namespace qto::embedded
