#include "qto/hosts/embedded/objects/chart_objects.hpp"

#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/sheet_operations.hpp"

namespace qto::embedded {

ChartSheetObject::ChartSheetObject(Ref<WorkbookObject> workbook, SheetSlot& slot)
    : place_{std::move(workbook), Ref<SheetSlot>(&slot), 0} {}

ChartSheetObject::~ChartSheetObject() { place_.slot->handle = nullptr; }

std::string ChartSheetObject::Name() const { return place_.sheet().name; }

int ChartSheetObject::Index() const { return place_.open().book().index_of(place_.sheet()) + 1; }

Ref<host::Workbook> ChartSheetObject::Workbook() const {
  place_.sheet();
  return place_.workbook;
}

std::int32_t ChartSheetObject::Visible() const {
  return static_cast<std::int32_t>(place_.sheet().visibility);
}

void ChartSheetObject::put_Visible(std::int32_t visibility) {
  put_visibility(place_.open(), place_.sheet(), visibility);
}

void ChartSheetObject::Unprotect(std::string_view password) { unprotect(place_.sheet(), password); }

void ChartSheetObject::Select() { select_sheet(place_.open(), place_.sheet()); }

void ChartSheetObject::Activate() { activate_sheet(place_.open(), place_.sheet()); }

Ref<host::HostObject> EmbeddedChartObject::Parent() const {
  place_.sheet();
  return make_ref<ChartFrameObject>(place_);
}

std::string EmbeddedChartObject::Name() const {
  return place_.sheet().name + " " + place_.model()->name;
}

int EmbeddedChartObject::Index() const {
  fail("A chart on a worksheet has no position among the sheets");
}

Ref<host::Workbook> EmbeddedChartObject::Workbook() const {
  place_.sheet();
  return place_.workbook;
}

std::int32_t EmbeddedChartObject::Visible() const {
  return static_cast<std::int32_t>(place_.sheet().visibility);
}

void EmbeddedChartObject::put_Visible(std::int32_t) {
  fail("A chart on a worksheet is shown and hidden with its sheet");
}

void EmbeddedChartObject::Unprotect(std::string_view password) {
  unprotect(place_.sheet(), password);
}

Ref<host::HostObject> ChartFrameObject::Parent() const {
  return place_.open().sheet(place_.sheet());
}

std::string ChartFrameObject::Name() const { return place_.model()->name; }

Ref<host::Chart> ChartFrameObject::Chart() const {
  place_.sheet();
  return make_ref<EmbeddedChartObject>(place_);
}

}  // namespace qto::embedded
