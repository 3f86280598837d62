#include "qto/hosts/libreoffice/objects/pivot_object.hpp"

#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/sheet/XDataPilotDescriptor.hpp>
#include <com/sun/star/sheet/XDataPilotTablesSupplier.hpp>

#include "qto/host/range.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

Rect block_of(const com::sun::star::table::CellRangeAddress& area) {
  return {{area.StartRow + 1, area.StartColumn + 1}, {area.EndRow + 1, area.EndColumn + 1}};
}

}  // namespace

Ref<host::HostObject> PivotObject::Parent() const {
  sheet_->slot();
  return sheet_;
}

std::string PivotObject::Name() const {
  sheet_->slot();
  return guarded("Reading a pivot table", [&] {
    return utf8(
        uno::Reference<com::sun::star::container::XNamed>(table_, uno::UNO_QUERY_THROW)->getName());
  });
}

Ref<host::Range> PivotObject::TableRange2() const {
  return guarded("Reading a pivot table",
                 [&] { return sheet_->Block(block_of(table_->getOutputRange())); });
}

/// The source as its sheet and range in R1C1 notation, as applications describe it.
std::string PivotObject::SourceData() const {
  return guarded("Reading a pivot table", [&]() -> std::string {
    const uno::Reference<sheet::XDataPilotDescriptor> descriptor(table_, uno::UNO_QUERY_THROW);
    const auto area = descriptor->getSourceRange();
    const auto& sheets = sheet_->document().sheets();
    if (area.Sheet < 0 || area.Sheet >= std::ssize(sheets)) return "";
    std::string out;
    append_sheets(out, sheets[area.Sheet]->name, "");
    return out + r1c1_of(block_of(area), true, true, {});
  });
}

std::vector<Ref<host::PivotTable>> pivot_tables(const Ref<WorksheetObject>& sheet) {
  return guarded("Reading the pivot tables", [&] {
    std::vector<Ref<host::PivotTable>> tables;
    const uno::Reference<sheet::XDataPilotTablesSupplier> supplier(sheet->slot().sheet,
                                                                   uno::UNO_QUERY_THROW);
    const uno::Reference<com::sun::star::container::XIndexAccess> list(
        supplier->getDataPilotTables(), uno::UNO_QUERY_THROW);
    for (std::int32_t i = 0; i < list->getCount(); ++i)
      tables.push_back(make_ref<PivotObject>(
          sheet,
          uno::Reference<sheet::XDataPilotTable>(list->getByIndex(i), uno::UNO_QUERY_THROW)));
    return tables;
  });
}

}  // namespace qto::libreoffice
