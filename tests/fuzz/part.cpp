#include <array>
#include <string>

#include "qto/hosts/embedded/xlsx/open_workbook.hpp"
#include "tests/fuzz/memory_file.hpp"
#include "tests/support/zip_writer.hpp"

namespace {

constexpr const char* links =
    "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>"
    "<Relationship Id='r1' Type='x/worksheet' Target='sheet1.xml'/>"
    "<Relationship Id='r2' Type='x/styles' Target='styles.xml'/>"
    "<Relationship Id='r3' Type='x/sharedStrings' Target='strings.xml'/>"
    "<Relationship Id='r4' Type='x/externalLink' Target='link.xml'/>"
    "<Relationship Id='r5' Type='x/pivotCacheDefinition' Target='cache.xml'/></Relationships>";
constexpr const char* sheet_links =
    "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>"
    "<Relationship Id='r1' Type='x/table' Target='table.xml'/>"
    "<Relationship Id='r2' Type='x/drawing' Target='drawing.xml'/>"
    "<Relationship Id='r3' Type='x/pivotTable' Target='pivot.xml'/></Relationships>";
constexpr const char* drawing_links =
    "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>"
    "<Relationship Id='r1' Type='x/chart' Target='chart.xml'/></Relationships>";
#define MAIN "xmlns='http://schemas.openxmlformats.org/spreadsheetml/2006/main' "
#define REL "xmlns:r='http://schemas.openxmlformats.org/officeDocument/2006/relationships'"

const std::array<qto::test::ZipEntry, 12> parts{{
    {"xl/workbook.xml",
     "<workbook " MAIN REL "><sheets><sheet name='A' sheetId='1' r:id='r1'/></sheets>"
     "<externalReferences><externalReference r:id='r4'/></externalReferences>"
     "</workbook>"},
    {"xl/sheet1.xml", "<worksheet " MAIN REL "><sheetData/><drawing r:id='r2'/>"
                      "<tableParts><tablePart r:id='r1'/></tableParts></worksheet>"},
    {"xl/styles.xml", "<styleSheet " MAIN "/>"},
    {"xl/strings.xml", "<sst " MAIN "/>"},
    {"xl/link.xml", "<externalLink " MAIN "/>"},
    {"xl/table.xml", "<table " MAIN "name='T' ref='A1:B2'/>"},
    {"xl/drawing.xml",
     "<d xmlns='http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing' "
     "xmlns:c='http://schemas.openxmlformats.org/drawingml/2006/chart' " REL
     "><cNvPr name='x'/><c:chart r:id='r1'/></d>"},
    {"xl/chart.xml",
     "<chartSpace xmlns='http://schemas.openxmlformats.org/drawingml/2006/chart'/>"},
    {"xl/pivot.xml", "<pivotTableDefinition " MAIN "/>"},
    {"xl/_rels/workbook.xml.rels", links},
    {"xl/_rels/sheet1.xml.rels", sheet_links},
    {"xl/_rels/drawing.xml.rels", drawing_links},
}};

}  // namespace

/// The first byte says which part of a small workbook the others are.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return -1;
  std::vector<qto::test::ZipEntry> package(parts.begin(), parts.end());
  package[data[0] % parts.size()].second.assign(reinterpret_cast<const char*>(data + 1), size - 1);
  const std::string bytes = qto::test::zip_bytes(package);
  const qto::fuzz::MemoryFile file(bytes.data(), bytes.size());
  qto::embedded::OpenOptions options;
  options.limits.cell_bytes = 64 << 20;
  options.limits.array_cells = 100'000;
  try {
    qto::embedded::open_workbook(file.path(), options);
  } catch (const qto::embedded::OpenFailure&) {
  }
  return 0;
}
