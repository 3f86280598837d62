#include "qto/hosts/libreoffice/document/chart_sheet.hpp"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/drawing/XDrawPageSupplier.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>

namespace qto::libreoffice {
namespace {

namespace drawing = com::sun::star::drawing;
constexpr const char* chart_class = "12dcae26-281f-416f-a234-c3086127382e";

uno::Reference<drawing::XDrawPage> page_of(const uno::Reference<sheet::XSpreadsheet>& sheet) {
  return uno::Reference<drawing::XDrawPageSupplier>(sheet, uno::UNO_QUERY_THROW)->getDrawPage();
}

bool is_chart(const uno::Reference<drawing::XShape>& shape) {
  if (shape->getShapeType() != "com.sun.star.drawing.OLE2Shape") return false;
  rtl::OUString id;
  uno::Reference<com::sun::star::beans::XPropertySet>(shape, uno::UNO_QUERY_THROW)
      ->getPropertyValue("CLSID") >>= id;
  return id.equalsIgnoreAsciiCaseAscii(chart_class);
}

}  // namespace

std::vector<uno::Reference<drawing::XShape>> chart_shapes(
    const uno::Reference<sheet::XSpreadsheet>& sheet) {
  std::vector<uno::Reference<drawing::XShape>> charts;
  const auto page = page_of(sheet);
  for (std::int32_t i = 0; i < page->getCount(); ++i) {
    const uno::Reference<drawing::XShape> shape(page->getByIndex(i), uno::UNO_QUERY);
    if (shape.is() && is_chart(shape)) charts.push_back(shape);
  }
  return charts;
}

bool is_chart_sheet(const uno::Reference<sheet::XSpreadsheet>& sheet) {
  if (page_of(sheet)->getCount() != 1) return false;
  const auto charts = chart_shapes(sheet);
  if (charts.size() != 1) return false;
  const auto place = charts.front()->getPosition();
  if (place.X != 0 || place.Y != 0) return false;
  constexpr sal_Int16 contents = 1 | 2 | 4 | 16;  // values, dates, texts, formulas
  const uno::Reference<sheet::XCellRangesQuery> query(sheet, uno::UNO_QUERY_THROW);
  return query->queryContentCells(contents)->getRangeAddresses().getLength() == 0;
}

}  // namespace qto::libreoffice
