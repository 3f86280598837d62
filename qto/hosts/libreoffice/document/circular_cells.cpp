#include <algorithm>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/sheet/FormulaResult.hpp>
#include <com/sun/star/sheet/XCalculatable.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/table/XCell.hpp>

#include "qto/hosts/libreoffice/document/cell_error.hpp"
#include "qto/hosts/libreoffice/document/document.hpp"
#include "qto/hosts/libreoffice/document/load_document.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

std::vector<CellPos> circular_in(const uno::Reference<sheet::XSpreadsheet>& sheet) {
  const uno::Reference<sheet::XCellRangesQuery> query(sheet, uno::UNO_QUERY_THROW);
  std::vector<CellPos> cells;
  for (const auto& block :
       query->queryFormulaCells(sheet::FormulaResult::ERROR)->getRangeAddresses())
    for (std::int32_t r = block.StartRow; r <= block.EndRow; ++r)
      for (std::int32_t c = block.StartColumn; c <= block.EndColumn; ++c)
        if (sheet->getCellByPosition(c, r)->getError() == circular_error)
          cells.push_back({r + 1, c + 1});
  std::sort(cells.begin(), cells.end());
  return cells;
}

std::vector<std::vector<CellPos>> circular_in(const Document::Model& model) {
  uno::Reference<sheet::XCalculatable>(model, uno::UNO_QUERY_THROW)->calculateAll();
  const uno::Reference<com::sun::star::container::XIndexAccess> sheets(model->getSheets(),
                                                                       uno::UNO_QUERY_THROW);
  std::vector<std::vector<CellPos>> found;
  for (std::int32_t i = 0; i < sheets->getCount(); ++i)
    found.push_back(circular_in(
        uno::Reference<sheet::XSpreadsheet>(sheets->getByIndex(i), uno::UNO_QUERY_THROW)));
  return found;
}

}  // namespace

/// The suite finds circles when it calculates. The values of a file stay as they are: what is
/// calculated is a second copy of it.
void Document::read_circular_cells() {
  auto circles = std::make_unique<std::vector<std::vector<CellPos>>>();
  if (is_new()) {
    evaluating = true;
    *circles = circular_in(model_);
    evaluating = false;
  } else {
    const Model copy = load_document(Office::running(), file_, password_);
    *circles = circular_in(copy);
    close_document(copy);
  }
  circles_ = std::move(circles);
}

const std::vector<CellPos>& Document::circular_cells(const SheetSlot& sheet) {
  static const std::vector<CellPos> none;
  if (!circles_) guarded("Looking for circular references", [&] { read_circular_cells(); });
  const auto position = static_cast<std::size_t>(sheet.position);
  return position < circles_->size() ? (*circles_)[position] : none;
}

}  // namespace qto::libreoffice
