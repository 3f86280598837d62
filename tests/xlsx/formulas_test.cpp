#include <gtest/gtest.h>

#include <string>

#include "qto/hosts/embedded/formulas/data_table.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using namespace embedded;

TEST(StoredFormulas, EqualOnesShareARecord) {
  const auto book = BookFile()
                        .cells(
                            "<row r='1'><c r='A1'><v>1</v></c></row>"
                            "<row r='2'><c r='A2'><f>A1+1</f><v>2</v></c></row>"
                            "<row r='3'><c r='A3'><f>A2+1</f><v>3</v></c></row>")
                        .open();
  EXPECT_EQ(formula(*book, "Sheet1", "A3"), "=A2+1");
  EXPECT_EQ(book->formula_records(), 1u);
  EXPECT_FALSE(book->needs_calculation());
}

TEST(StoredFormulas, TextIsKeptAsItIs) {
  const auto book =
      BookFile()
          .cells(
              "<row><c><f xml:space='preserve'> 1 +\n2</f><v>3</v></c><c><f></f><v>4</v></c>"
              "<c><f/><v>5</v></c><c><f>&quot;a_x005F_x000A_b&quot;</f><v>0</v></c></row>")
          .open();
  EXPECT_EQ(formula(*book, "Sheet1", "A1"), "= 1 +\n2");
  EXPECT_EQ(formula(*book, "Sheet1", "B1"), "");
  EXPECT_EQ(formula(*book, "Sheet1", "C1"), "");
  EXPECT_EQ(formula(*book, "Sheet1", "D1"), "=\"a_x000A_b\"");
}

TEST(SharedFormulas, ChildrenMoveWithTheirCell) {
  const auto book =
      BookFile()
          .cells(
              "<row r='1'><c r='B1'><f t='shared' ref='B1:B3' si='0'>$A1*2+A$1</f><v>1</v></c>"
              "</row><row r='2'><c r='B2'><f t='shared' si='0'/><v>2</v></c></row>"
              "<row r='3'><c r='C3'><f t='shared' si='0'></f><v>3</v></c></row>")
          .open();
  EXPECT_EQ(formula(*book, "Sheet1", "B1"), "=$A1*2+A$1");
  EXPECT_EQ(formula(*book, "Sheet1", "B2"), "=$A2*2+A$1");
  EXPECT_EQ(formula(*book, "Sheet1", "C3"), "=$A3*2+B$1");
}

TEST(SharedFormulas, AChildMayStandBeforeItsMaster) {
  const auto book = BookFile()
                        .cells(
                            "<row r='1'><c r='A1'><f t='shared' si='7'/><v>1</v></c>"
                            "<c r='B1'><f t='shared' ref='A1:B1' si='7'>C1+1</f><v>2</v></c></row>")
                        .open();
  EXPECT_EQ(formula(*book, "Sheet1", "A1"), "=B1+1");
  EXPECT_FALSE(book->needs_calculation());
}

TEST(SharedFormulas, WithoutAMasterTheValueStays) {
  const auto book = BookFile()
                        .cells(
                            "<row><c><f t='shared' si='1'/><v>8</v></c>"
                            "<c><f t='shared'/><v>9</v></c>"
                            "<c><f t='shared' si='-5'/><v>9</v></c></row>")
                        .open();
  EXPECT_EQ(shown(*book, "Sheet1", "A1"), "8");
  EXPECT_EQ(formula(*book, "Sheet1", "A1"), "");
  EXPECT_FALSE(book->needs_calculation());
}

TEST(SharedFormulas, GroupNumbersMayBeReusedAndLarge) {
  const auto book = BookFile()
                        .cells(
                            "<row r='1'><c r='A1'><f t='shared' ref='A1' si='0'>1+B1</f></c>"
                            "<c r='C1'><f t='shared' ref='C1' si='4000000000'>3+D1</f></c></row>"
                            "<row r='2'><c r='A2'><f t='shared' ref='A2' si='0'>2+B2</f></c>"
                            "<c r='C2'><f t='shared' si='4000000000'/></c></row>"
                            "<row r='3'><c r='A3'><f t='shared' si='0'/></c></row>")
                        .open();
  EXPECT_EQ(formula(*book, "Sheet1", "A3"), "=2+B3");
  EXPECT_EQ(formula(*book, "Sheet1", "C2"), "=3+D2");
}

TEST(ArrayFormulas, EveryCellOfTheBlockShowsTheFormula) {
  const auto book =
      BookFile()
          .cells(
              "<row r='1'><c r='B1'><f t='array' ref='B1:C2'>A1:A2*2</f><v>2</v></c>"
              "<c r='C1'><v>4</v></c></row><row r='2'><c r='B2'><v>6</v></c></row>"
              "<row r='3'><c r='A3'><f t='array' ref='X9:Z10'>SUM(A1:A2)</f><v>1</v></c></row>")
          .open();
  const Sheet& sheet = sheet_of(*book, "Sheet1");
  for (const char* cell : {"B1", "C1", "B2", "C2"})
    EXPECT_EQ(formula(*book, "Sheet1", cell), "=A1:A2*2") << cell;
  EXPECT_EQ(shown(*book, "Sheet1", "B2"), "6");
  const FormulaRecord& record = book->formula(sheet.formula_at({2, 3}));
  EXPECT_EQ(record.kind, FormulaKind::array);
  EXPECT_EQ(address_of(record.block), "B1:C2");
  EXPECT_EQ(address_of(book->formula(sheet.formula_at({3, 1})).block), "A3");
}

TEST(ArrayFormulas, ABlockOverTheWholeSheetStoresNoCells) {
  const auto book =
      BookFile()
          .cells("<row><c><f t='array' ref='A1:XFD1048576'>ROW()</f><v>1</v></c></row>")
          .open();
  EXPECT_EQ(formula(*book, "Sheet1", "XFD1048576"), "=ROW()");
  EXPECT_EQ(sheet_of(*book, "Sheet1").cells.cell_count(), 1);
}

TEST(DataTables, NameTheirInputCells) {
  const auto book =
      BookFile()
          .cells(
              "<row r='1'><c r='B1'><f t='dataTable' ref='B1:B2' dt2D='0' dtr='0' r1='A9'/>"
              "<v>1</v></c>"
              "<c r='D1'><f t='dataTable' ref='D1' dtr='1' r1='A9'/><v>1</v></c>"
              "<c r='F1'><f t='dataTable' ref='F1:G2' dt2D='1' dtr='1' r1='A8' r2='A9'/>"
              "<v>1</v></c></row>")
          .open();
  const Sheet& sheet = sheet_of(*book, "Sheet1");
  EXPECT_EQ(book->formula(sheet.formula_at({2, 2})).kind, FormulaKind::data_table);
  EXPECT_EQ(formula(*book, "Sheet1", "B2"), "=TABLE(,A9)");
  EXPECT_EQ(formula(*book, "Sheet1", "D1"), "=TABLE(A9,)");
  EXPECT_EQ(formula(*book, "Sheet1", "G2"), "=TABLE(A8,A9)");
}

TEST(DataTables, TellWhatTheirCellsRestOn) {
  const auto book =
      BookFile()
          .cells(
              "<row r='2'><c r='C2'><f t='dataTable' ref='C2:C3' dtr='0' r1='A9'/><v>1</v></c>"
              "<c r='F2'><f t='dataTable' ref='F2:G2' dtr='1' r1='A9'/><v>1</v></c>"
              "<c r='J2'><f t='dataTable' ref='J2:K3' dt2D='1' dtr='1' r1='A8' r2='A9'/>"
              "<v>1</v></c><c r='M2'><f t='dataTable' ref='M2' del1='1'/><v>1</v></c></row>"
              "<row r='1'><c r='A1'><f t='dataTable' ref='A1' dtr='0' r1='A9'/><v>1</v></c></row>")
          .open();
  const Sheet& sheet = sheet_of(*book, "Sheet1");
  const auto sources = [&](std::string_view address) {
    const CellPos at = parse_cell(address)->pos;
    const auto table = data_table(book->formula(sheet.formula_at(at)));
    std::string out;
    for (const CellPos cell : table ? table->sources(at) : std::vector<CellPos>())
      out += (out.empty() ? "" : " ") + address_of(cell);
    return out;
  };
  EXPECT_EQ(sources("C3"), "C1 A9 B3");
  EXPECT_EQ(sources("G2"), "E2 A9 G1");
  EXPECT_EQ(sources("K3"), "I1 A8 K1 A9 I3");
  EXPECT_EQ(sources("M2"), "");
  EXPECT_EQ(sources("A1"), "A9");
}

TEST(CachedResults, DecideWhatIsCalculated) {
  const std::string with = "<row><c><f>1+1</f><v>2</v></c></row>";
  const std::string without = "<row r='2'><c r='A2'><f>2+2</f></c></row>";
  const std::string late =
      "<row r='3'><c r='A3'><f t='shared' si='0'/></c></row>"
      "<row r='4'><c r='A4'><f t='shared' ref='A3:A4' si='0'>B4</f>"
      "<v>1</v></c></row>";
  EXPECT_FALSE(BookFile().cells("<row><c><v>2</v></c></row>").open()->needs_calculation());
  EXPECT_FALSE(BookFile().cells(with).open()->needs_calculation());
  EXPECT_TRUE(BookFile().cells(without).open()->all_pending());
  const std::string empty = "<row><c><f>1+1</f><v></v></c><c><f>1+1</f><v/></c></row>";
  EXPECT_TRUE(BookFile().cells(empty).open()->all_pending());
  const std::string empty_text = "<row><c t='str'><f>\"\"</f><v></v></c></row>";
  EXPECT_FALSE(BookFile().cells(empty_text).open()->needs_calculation());
  EXPECT_TRUE(BookFile().cells(with).open({.keep_cached_values = false})->all_pending());
  const auto mixed = BookFile().cells(with + without).open();
  EXPECT_FALSE(mixed->all_pending());
  ASSERT_EQ(mixed->pending().size(), 1u);
  EXPECT_EQ(mixed->pending()[0].pos, (CellPos{2, 1}));
  const auto child = BookFile().cells(with + late).open();
  ASSERT_EQ(child->pending().size(), 1u);
  EXPECT_EQ(child->pending()[0].pos, (CellPos{3, 1}));
}

TEST(CachedResults, StandThoughTheFileAsksForCalculation) {
  BookFile file;
  file.workbook(
      "<sheets><sheet name='Sheet1' sheetId='1' r:id='r1'/></sheets>"
      "<calcPr fullCalcOnLoad='1'/>",
      {"worksheet"});
  const auto book = file.cells("<row><c><f>1+1</f><v>5</v></c></row>").open();
  EXPECT_EQ(shown(*book, "Sheet1", "A1"), "5");
  EXPECT_FALSE(book->needs_calculation());
}

TEST(Iteration, AsTheFileAsksForIt) {
  const auto iteration = [](const std::string& calculation) {
    BookFile file;
    file.workbook("<sheets><sheet name='Sheet1' sheetId='1' r:id='r1'/></sheets>" + calculation,
                  {"worksheet"});
    return file.cells("").open()->iteration;
  };
  EXPECT_FALSE(iteration("").on);
  EXPECT_FALSE(iteration("<calcPr iterateCount='7'/>").on);
  const auto usual = iteration("<calcPr iterate='1'/>");
  EXPECT_TRUE(usual.on);
  EXPECT_EQ(usual.count, 100);
  EXPECT_EQ(usual.change, 0.001);
  const auto own = iteration("<calcPr iterate='1' iterateCount='7' iterateDelta='1E-4'/>");
  EXPECT_EQ(own.count, 7);
  EXPECT_EQ(own.change, 1e-4);
  EXPECT_EQ(iteration("<calcPr iterate='1' iterateCount='-5'/>").count, 1);
}

}  // namespace
}  // namespace qto::test
