#pragma once

#include <string>

#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/objects/open_book.hpp"

/// Formula texts as the members of the object model answer them.
namespace qto::embedded {

/// Rendering for the cell, with the application's open books known to it.
RenderContext context_at(const OpenBook& book, const Sheet& sheet, CellPos at);
/// The same for the active cell of the book's active sheet, which relative names count from.
RenderContext context_at_active_cell(const OpenBook& book);

using AppendFormula = void (CompiledFormula::*)(std::string&, const RenderContext&) const;
/// Appends the formula of a cell in the form that `append` gives, its constant as text, or nothing
/// when it is empty. Throws for a hidden formula on a protected sheet.
void append_formula_text(std::string& out, const OpenBook& book, const Sheet& sheet, CellPos pos,
                         AppendFormula append);

}  // namespace qto::embedded
