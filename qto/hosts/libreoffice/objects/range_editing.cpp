#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/lang/Locale.hpp>
#include <com/sun/star/sheet/XArrayFormulaTokens.hpp>
#include <com/sun/star/sheet/XFormulaTokens.hpp>
#include <com/sun/star/util/XNumberFormatsSupplier.hpp>

#include "qto/automation/text.hpp"
#include "qto/hosts/libreoffice/document/scratch.hpp"
#include "qto/hosts/libreoffice/formulas/to_office.hpp"
#include "qto/hosts/libreoffice/objects/constant_text.hpp"
#include "qto/hosts/libreoffice/objects/range_object.hpp"
#include "qto/hosts/libreoffice/objects/sheet_operations.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

namespace table = com::sun::star::table;

/// Names stay names in a formula that is written.
class WrittenSurroundings final : public PieceSurroundings {
 public:
  explicit WrittenSurroundings(const Document& document) : document_(document) {}
  const FunctionNames& functions() const override { return document_.others().function_names(); }
  std::optional<std::string> name(std::string_view) const override { return std::nullopt; }
  std::string full_name(std::string_view book) const override {
    const Document* open = document_.others().find_document(book);
    return open && !open->is_new() ? open->file() : "";
  }

 private:
  const Document& document_;
};

uno::Sequence<sheet::FormulaToken> tokens_of(Document& document, const SheetSlot& slot, CellPos at,
                                             std::string_view formula) {
  if (formula.starts_with('=')) formula.remove_prefix(1);
  const OfficePiece piece = to_office(formula, {0, 0}, WrittenSurroundings(document));
  const auto tokens =
      document.parser()->parseFormula(wide(piece.text), {slot.position, at.column - 1, at.row - 1});
  if (!tokens.hasElements()) fail("Not a formula: " + std::string(formula));
  return tokens;
}

void put_number_format(Document& document, const uno::Reference<uno::XInterface>& cells,
                       std::string_view code) {
  const auto formats = uno::Reference<com::sun::star::util::XNumberFormatsSupplier>(
                           document.model(), uno::UNO_QUERY_THROW)
                           ->getNumberFormats();
  const com::sun::star::lang::Locale locale("en", "US", "");
  std::int32_t key = formats->queryKey(wide(code), locale, false);
  if (key < 0) key = formats->addNew(wide(code), locale);
  uno::Reference<com::sun::star::beans::XPropertySet>(cells, uno::UNO_QUERY_THROW)
      ->setPropertyValue("NumberFormat", uno::Any(key));
}

void put_constant(Document& document, const uno::Reference<table::XCell>& cell,
                  const Variant& value) {
  if (const auto* number = value.get_if<double>())
    cell->setValue(*number);
  else if (const auto* whole = value.get_if<std::int32_t>())
    cell->setValue(*whole);
  else if (const auto* flag = value.get_if<bool>())
    cell->setFormula(*flag ? OUString("=TRUE()") : OUString("=FALSE()"));
  else if (const auto* date = value.get_if<Date>()) {
    cell->setValue(date->serial - document.date_origin());
    put_number_format(document, cell, "YYYY-MM-DD");
  } else if (const auto* error = value.get_if<ErrorValue>())
    cell->setFormula(wide("=" + std::string(error_text(*error))));
  else
    cell->setFormula(value.text().empty() ? OUString() : wide("'" + value.text()));
}

/// Runs a change of the cells of a new document, which is read again afterwards.
template <class Change>
void edit(const WorksheetObject& sheet, Change&& change) {
  Document& document = sheet.document();
  check_new(document);
  guarded("Writing cells", [&] {
    document.evaluating = true;  // one reading at the end
    change(document, sheet.slot());
    document.evaluating = false;
    document.changed();
  });
}

template <class Visit>
void for_each_cell(const std::vector<Rect>& blocks, Visit&& visit) {
  for (const Rect& block : blocks)
    for (std::int32_t row = block.first.row; row <= block.last.row; ++row)
      for (std::int32_t column = block.first.column; column <= block.last.column; ++column)
        visit(CellPos{row, column});
}

uno::Reference<table::XCell> cell_at(const SheetSlot& slot, CellPos pos) {
  return slot.sheet->getCellByPosition(pos.column - 1, pos.row - 1);
}

}  // namespace

void RangeObject::put_value(const Variant& value) {
  edit(*sheet_, [&](Document& document, SheetSlot& slot) {
    for_each_cell(blocks(),
                  [&](CellPos pos) { put_constant(document, cell_at(slot, pos), value); });
  });
}

void RangeObject::put_Formula(std::string_view formula) {
  if (!formula.starts_with('=')) {
    const auto number = text::to_number(formula);
    const bool flag = formula == "TRUE" || formula == "FALSE";
    return put_value(number ? Variant(*number)
                     : flag ? Variant(formula == "TRUE")
                            : Variant(formula));
  }
  edit(*sheet_, [&](Document& document, SheetSlot& slot) {
    const auto tokens = tokens_of(document, slot, block_.first, formula);
    for_each_cell(blocks(), [&](CellPos pos) {
      uno::Reference<sheet::XFormulaTokens>(cell_at(slot, pos), uno::UNO_QUERY_THROW)
          ->setTokens(tokens);
    });
  });
}

void RangeObject::put_FormulaArray(std::string_view formula) {
  edit(*sheet_, [&](Document& document, SheetSlot& slot) {
    const auto cells = slot.sheet->getCellRangeByPosition(
        block_.first.column - 1, block_.first.row - 1, block_.last.column - 1, block_.last.row - 1);
    uno::Reference<sheet::XArrayFormulaTokens>(cells, uno::UNO_QUERY_THROW)
        ->setArrayTokens(tokens_of(document, slot, block_.first, formula));
  });
}

void RangeObject::put_NumberFormat(std::string_view code) {
  edit(*sheet_, [&](Document& document, SheetSlot& slot) {
    for_each_cell(blocks(),
                  [&](CellPos pos) { put_number_format(document, cell_at(slot, pos), code); });
  });
}

}  // namespace qto::libreoffice
