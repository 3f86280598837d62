#pragma once

#include <com/sun/star/drawing/XShape.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <vector>

namespace qto::libreoffice {

namespace uno = com::sun::star::uno;
namespace sheet = com::sun::star::sheet;

/// The charts that lie on a sheet, in the order in which they are drawn.
std::vector<uno::Reference<com::sun::star::drawing::XShape>> chart_shapes(
    const uno::Reference<sheet::XSpreadsheet>& sheet);
/// The suite has no chart sheets: one of a file becomes a sheet without cells whose only object is
/// a chart in the very corner. That is taken for one here.
bool is_chart_sheet(const uno::Reference<sheet::XSpreadsheet>& sheet);

}  // namespace qto::libreoffice
