#include "qto/hosts/embedded/objects/cell_formula.hpp"

#include "qto/hosts/embedded/objects/application_object.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"

namespace qto::embedded {
namespace {

const Book* open_link(const Book& book, std::uint32_t index, const void* data) {
  const auto* application = static_cast<const ApplicationObject*>(data);
  const ExternalBook& link = book.externals[index];
  const OpenBook* open =
      link.kind == ExternalBook::Kind::workbook ? application->find_book(link.name) : nullptr;
  return open ? &open->book() : nullptr;
}

void append_constant(std::string& out, const Book& book, const Cell& cell) {
  switch (cell.type()) {
    case CellType::empty:
      return;
    case CellType::number:
      out.append(formats::general_text(cell.number()));
      return;
    case CellType::text:
      out.append(book.texts.view(cell.text()));
      return;
    case CellType::boolean:
      out.append(cell.boolean() ? "TRUE" : "FALSE");
      return;
    case CellType::error:
      out.append(error_text(cell.error()));
      return;
  }
}

}  // namespace

RenderContext context_at(const OpenBook& book, const Sheet& sheet, CellPos at) {
  RenderContext context;
  context.book = &book.book();
  context.sheet = &sheet;
  context.at = at;
  context.find_open = open_link;
  context.data = &book.application();
  return context;
}

RenderContext context_at_active_cell(const OpenBook& book) {
  // Only one book has the active cell; names of the others are seen from its position, too.
  const OpenBook* active = book.application().active_book();
  return context_at(book, book.active_sheet(), (active ? *active : book).active_cell());
}

void append_formula_text(std::string& out, const OpenBook& book, const Sheet& sheet, CellPos pos,
                         AppendFormula append) {
  const Cell* cell = sheet.cells.find(pos);
  if (sheet.protection.enabled && cell && book.book().styles.at(cell->style()).formula_hidden)
    fail("The formula of " + address_of(pos) + " on " + sheet.name + " is hidden");
  const FormulaId id = sheet.formula_at(pos);
  if (id == 0) {
    if (cell) append_constant(out, book.book(), *cell);
    return;
  }
  const FormulaRecord& record = book.book().formula(id);
  const CellPos at = record.kind == FormulaKind::normal ? pos : record.block.first;
  (record.compiled.get()->*append)(out, context_at(book, sheet, at));
}

}  // namespace qto::embedded
