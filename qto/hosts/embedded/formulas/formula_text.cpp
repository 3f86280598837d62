#include "qto/hosts/embedded/formulas/formula_text.hpp"

#include "qto/formula/reference_text.hpp"
#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/formulas/link_qualifier.hpp"
#include "qto/hosts/embedded/formulas/table_target.hpp"

namespace qto::embedded {
namespace {

void append_target(std::string& out, const StructuredTarget& target, const Rect& rect,
                   const RenderContext& context) {
  if (target.table->sheet != context.sheet) {
    append_sheet_name(out, target.table->sheet->name);
    out.push_back('!');
  }
  append_rect(out, rect);
}

StructuredTarget resolve(const formula::StructuredRef& ref, const RenderContext& context) {
  if (context.book && context.sheet)
    return resolve_structured(ref, *context.book, *context.sheet, context.at);
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

void append_structured(std::string& out, const formula::StructuredRef& ref,
                       const RenderContext& context) {
  const StructuredTarget target = resolve(ref, context);
  if (target.error)
    out += error_text(*target.error);
  else
    append_target(out, target, target.rect, context);
}

void append_marked(std::string& out, const formula::FormulaPieces& formula,
                   const formula::Piece& piece, const RenderContext& context) {
  if (piece.over_structured) {
    const StructuredTarget target = resolve(formula.structured[piece.item], context);
    if (target.error)
      out += error_text(*target.error);
    else
      append_target(out, target, intersect_implicitly(target.rect, context.at), context);
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

}  // namespace

void append_pieces(std::string& out, const formula::FormulaPieces& formula,
                   const RenderContext& context, TextForm form) {
  out.push_back('=');
  for (std::size_t i = 0; i < formula.pieces.size(); ++i) {
    const formula::Piece& piece = formula.pieces[i];
    switch (piece.kind) {
      case formula::PieceKind::literal:
        out.append(formula.literals, piece.begin, piece.length);
        break;
      case formula::PieceKind::local_literal:
        if (form != TextForm::formula) out.append(formula.literals, piece.begin, piece.length);
        break;
      case formula::PieceKind::area:
        form == TextForm::r1c1
            ? formula::append_area_r1c1(out, formula.areas[piece.item], context.at)
            : formula::append_area(out, formula.areas[piece.item], context.at);
        break;
      case formula::PieceKind::qualifier:
        append_link_qualifier(out, formula.qualifiers[piece.item], context);
        break;
      case formula::PieceKind::structured:
        form == TextForm::formula ? append_structured(out, formula.structured[piece.item], context)
                                  : void(out.append(formula.literals, piece.begin, piece.length));
        break;
      case formula::PieceKind::single:
      case formula::PieceKind::spill:
        if (form == TextForm::formula) {
          append_marked(out, formula, piece, context);
          i += piece.covers;
        } else if (piece.kind == formula::PieceKind::single) {
          out.push_back('@');
        }
        break;
    }
  }
}

}  // namespace qto::embedded
