#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using namespace embedded;

std::vector<std::string> sheet_names(const Book& book) {
  std::vector<std::string> names;
  for (const auto& sheet : book.sheets()) names.push_back(sheet->name);
  return names;
}

TEST(Workbook, SheetsWithKindAndVisibility) {
  BookFile file;
  file.workbook(
      "<workbookPr date1904='1'/><workbookProtection lockStructure='1'/>"
      "<bookViews><workbookView activeTab='2'/><workbookView activeTab='0'/></bookViews><sheets>"
      "<sheet name='A&amp;&apos;B' sheetId='1' r:id='r1'/>"
      "<sheet name='Hidden' sheetId='2' state='hidden' r:id='r2'/>"
      "<sheet name='Deep ' sheetId='3' state='veryHidden' r:id='r3'/>"
      "<sheet name='Chart' sheetId='4' r:id='r4'/><sheet name='Dialog' sheetId='5' r:id='r5'/>"
      "<sheet name='Macro' sheetId='6' r:id='r6'/>"
      "<sheet name='Module' sheetId='7' state='veryHidden' r:id=''/></sheets>",
      {"worksheet", "worksheet", "worksheet", "chartsheet", "dialogsheet", "xlMacrosheet"});
  const auto book = file.open();
  EXPECT_THAT(sheet_names(*book), testing::ElementsAre("A&'B", "Hidden", "Deep ", "Chart", "Dialog",
                                                       "Macro", "Module"));
  EXPECT_EQ(sheet_of(*book, "hidden").visibility, SheetVisibility::hidden);
  EXPECT_EQ(sheet_of(*book, "Deep ").visibility, SheetVisibility::very_hidden);
  EXPECT_EQ(sheet_of(*book, "Chart").kind, SheetKind::chart);
  EXPECT_EQ(sheet_of(*book, "Dialog").kind, SheetKind::dialog);
  EXPECT_EQ(sheet_of(*book, "Macro").kind, SheetKind::macro);
  EXPECT_EQ(sheet_of(*book, "Module").kind, SheetKind::worksheet);
  EXPECT_TRUE(book->date1904);
  EXPECT_TRUE(book->structure.enabled);
  EXPECT_EQ(book->active_sheet, 2u);
  EXPECT_EQ(book->name, "book.xlsx");
  EXPECT_FALSE(book->path.empty());
}

TEST(Workbook, SheetNamesAreMadeUnique) {
  BookFile file;
  file.workbook(
      "<sheets><sheet name='S' sheetId='1' r:id='r1'/><sheet name='s' sheetId='2' r:id='r1'/>"
      "<sheet name='' sheetId='3' r:id='r1'/></sheets>",
      {"worksheet"});
  const auto book = file.cells("<row><c><v>1</v></c></row>").open();
  EXPECT_THAT(sheet_names(*book), testing::ElementsAre("S", "s (2)", "Sheet1"));
  EXPECT_EQ(shown(*book, "s (2)", "A1"), "1");
}

TEST(Workbook, Names) {
  BookFile file;
  file.workbook(
      "<sheets><sheet name='S' sheetId='1' r:id='r1'/></sheets><definedNames>"
      "<definedName name='Rate'>S!$A$1</definedName><definedName name='RATE'>2</definedName>"
      "<definedName name='Rate' localSheetId='0' hidden='1'>S!$B$1</definedName>"
      "<definedName name='_xlnm.Print_Area' localSheetId='0'>S!$A$1:$B$2</definedName>"
      "<definedName name=''>1</definedName><definedName name='Off' localSheetId='9'>1</definedName>"
      "<definedName name='Above'>S!A1048576</definedName><definedName name='None'/>"
      "</definedNames>",
      {"worksheet"});
  const auto book = file.open();
  const Sheet& sheet = sheet_of(*book, "S");
  const auto text = [&](const DefinedName* name, CellPos at) {
    std::string out;
    name->refers_to->append_formula(out, {book.get(), &sheet, at});
    return out;
  };
  EXPECT_EQ(book->names.all().size(), 5u);
  EXPECT_EQ(text(book->names.find("rate", nullptr), {}), "=S!$A$1");
  ASSERT_TRUE(book->names.find("Rate", &sheet));
  EXPECT_TRUE(book->names.find("Rate", &sheet)->hidden);
  EXPECT_EQ(text(book->names.resolve("Rate", &sheet), {}), "=S!$B$1");
  EXPECT_TRUE(book->names.find("Print_Area", &sheet));
  EXPECT_EQ(text(book->names.find("Above", nullptr), {5, 2}), "=S!B4");
  EXPECT_TRUE(book->names.find("None", nullptr));
}

TEST(Workbook, FrozenPanes) {
  const struct {
    const char* pane;
    const char* first;
    int rows, columns;
    const char* scroll;
  } rows[] = {
      {"ySplit='2' state='frozen'", "B2", 2, 0, "B4"},
      {"xSplit='1' ySplit='2' topLeftCell='F40' state='frozen'", "B2", 2, 1, "F40"},
      {"xSplit='1' topLeftCell='A1' state='frozenSplit'", "B2", 0, 1, "C2"},
      {"ySplit='9e99' xSplit='-5' state='frozen'", "B2", 1'048'574, 0, "B1048576"},
      {"xSplit='1200' ySplit='900' topLeftCell='F40' state='split'", "A1", 0, 0, "B2"},
      {"ySplit='900' topLeftCell='F40' activePane='bottomLeft'", "A1", 0, 0, "B40"},
      {"ySplit='900' topLeftCell='F40' activePane='topRight'", "A1", 0, 0, "F2"},
  };
  for (const auto& row : rows) {
    const auto book = BookFile()
                          .sheet("<sheetViews><sheetView topLeftCell='B2'><pane " +
                                 std::string(row.pane) + "/></sheetView></sheetViews><sheetData/>")
                          .open();
    const Sheet& sheet = sheet_of(*book, "Sheet1");
    EXPECT_EQ(address_of(sheet.frozen.first), row.first) << row.pane;
    EXPECT_EQ(sheet.frozen.rows, row.rows) << row.pane;
    EXPECT_EQ(sheet.frozen.columns, row.columns) << row.pane;
    EXPECT_EQ(address_of(sheet.scroll), row.scroll) << row.pane;
  }
}

TEST(Workbook, LinesOfNoSizeAreHidden) {
  const auto book =
      BookFile()
          .sheet(
              "<sheetFormatPr zeroHeight='1'/><cols><col min='2' max='2' width='0'/>"
              "<col min='3' max='3' width='9'/></cols><sheetData><row r='2' ht='0'/>"
              "<row r='3'/></sheetData><sheetProtection sheet='1' formatColumns='0'/>")
          .open();
  const Sheet& sheet = sheet_of(*book, "Sheet1");
  EXPECT_TRUE(sheet.layout.column_hidden(2));
  EXPECT_FALSE(sheet.layout.column_hidden(3));
  EXPECT_TRUE(sheet.layout.row_hidden(1));
  EXPECT_TRUE(sheet.layout.row_hidden(2));
  EXPECT_FALSE(sheet.layout.row_hidden(3));  // rows that are written show unless they say otherwise
  EXPECT_TRUE(sheet.protection.format_columns);
  EXPECT_FALSE(sheet.protection.format_rows);
}

TEST(Workbook, SheetSettings) {
  const auto book =
      BookFile()
          .sheet(
              "<sheetViews><sheetView topLeftCell='B2'><pane activePane='bottomLeft'"
              " topLeftCell='A5'/><selection activeCell='A1' sqref='A1'/>"
              "<selection pane='bottomLeft' activeCell='D9' sqref='A1:B2 C8:D9'/></sheetView>"
              "<sheetView topLeftCell='Z1'><selection sqref='Z1'/></sheetView></sheetViews>"
              "<sheetFormatPr baseColWidth='8' defaultRowHeight='20' zeroHeight='1'/>"
              "<cols><col min='2' max='3' width='9.140625'/><col min='3' max='4' hidden='1'/>"
              "<col min='0' max='5' hidden='1'/><col min='16384' max='99999' hidden='1'/></cols>"
              "<sheetData><row r='7' ht='30' hidden='0'/><row r='3' ht='12' hidden='1'/>"
              "<row r='3' ht='13'/></sheetData><sheetProtection sheet='1' algorithmName='SHA-512'"
              " hashValue='aGFzaA==' saltValue='c2FsdA==' spinCount='100000'/>"
              "<mergeCells><mergeCell ref='A1:XFD1048576'/><mergeCell ref='?'/></mergeCells>")
          .open();
  const Sheet& sheet = sheet_of(*book, "Sheet1");
  EXPECT_EQ(address_of(sheet.selection), "C8:D9");
  EXPECT_EQ(address_of(sheet.scroll), "B5");
  EXPECT_NEAR(sheet.layout.default_width, 8.43, 0.005);
  EXPECT_NEAR(sheet.layout.column_width(2), 8.43, 0.005);
  EXPECT_FALSE(sheet.layout.column_hidden(3));
  EXPECT_TRUE(sheet.layout.column_hidden(4));
  EXPECT_FALSE(sheet.layout.column_hidden(1));
  EXPECT_TRUE(sheet.layout.column_hidden(16384));
  EXPECT_EQ(sheet.layout.row(7).height, 30);
  EXPECT_EQ(sheet.layout.row(3).height, 13);
  EXPECT_TRUE(sheet.layout.row_hidden(100));
  EXPECT_EQ(sheet.layout.default_height, 20);
  EXPECT_TRUE(sheet.protection.enabled);
  EXPECT_EQ(sheet.protection.hash, "aGFzaA==");
  EXPECT_EQ(sheet.protection.spins, 100'000u);
  ASSERT_EQ(sheet.merges.size(), 1u);
  EXPECT_EQ(sheet.merges[0], Rect::sheet());
}

TEST(Workbook, LegacySheetPassword) {
  const auto book =
      BookFile().sheet("<sheetData/><sheetProtection password='CC1A' sheet='true'/>").open();
  const SheetProtection& protection = sheet_of(*book, "Sheet1").protection;
  EXPECT_TRUE(protection.enabled);
  EXPECT_EQ(protection.hash, "CC1A");
  EXPECT_EQ(protection.algorithm, "");
}

TEST(Workbook, PasswordsOfItsStructure) {
  const auto protection_of = [](const std::string& attributes) {
    BookFile file;
    file.workbook("<workbookProtection " + attributes +
                      "/><sheets><sheet name='S' sheetId='1' r:id='r1'/></sheets>",
                  {"worksheet"});
    return file.open()->structure;
  };
  const SheetProtection legacy = protection_of("lockStructure='1' workbookPassword='CC1A'");
  EXPECT_TRUE(legacy.enabled);
  EXPECT_EQ(legacy.hash, "CC1A");
  const SheetProtection digest = protection_of(
      "workbookAlgorithmName='SHA-512' workbookHashValue='aGFzaA==' workbookSaltValue='c2FsdA=='"
      " workbookSpinCount='100000' lockStructure='true'");
  EXPECT_TRUE(digest.enabled);
  EXPECT_EQ(digest.algorithm, "SHA-512");
  EXPECT_EQ(digest.hash, "aGFzaA==");
  EXPECT_EQ(digest.salt, "c2FsdA==");
  EXPECT_EQ(digest.spins, 100'000u);
  EXPECT_FALSE(protection_of("lockWindows='1' workbookPassword='CC1A'").enabled);
}

TEST(Workbook, ProgressRisesToTheEnd) {
  std::vector<double> fractions;
  OpenOptions options;
  options.progress = [](double fraction, void* data) {
    static_cast<std::vector<double>*>(data)->push_back(fraction);
  };
  options.progress_data = &fractions;
  BookFile().open(options);
  ASSERT_FALSE(fractions.empty());
  EXPECT_TRUE(std::ranges::is_sorted(fractions));
  EXPECT_EQ(fractions.back(), 1.0);
}

// A part that is inflated on a second thread.
TEST(Workbook, LargePartsAreComplete) {
  std::string rows;
  for (int row = 1; row <= 60'000; ++row) {
    const std::string at = std::to_string(row);
    rows += "<row r='" + at + "'><c r='A" + at + "'><v>" + at + "</v></c></row>";
  }
  const auto book = BookFile().cells(rows).open();
  EXPECT_EQ(sheet_of(*book, "Sheet1").cells.cell_count(), 60'000);
  EXPECT_EQ(shown(*book, "Sheet1", "A60000"), "60000");
}

struct Packaging {
  const char* name;
  void (*change)(BookFile& file);
};
void PrintTo(const Packaging& packaging, std::ostream* out) { *out << packaging.name; }

std::string utf16(const std::string& ascii) {
  std::string bytes = "\xFF\xFE";
  for (const char c : ascii) bytes.append({c, '\0'});
  return bytes;
}

const std::string one_sheet = "<sheets><sheet name='Sheet1' sheetId='1' r:id='r1'/></sheets>";
const std::string one_value = "<sheetData><row r='1'><c r='A1'><v>42</v></c></row></sheetData>";

const Packaging packagings[] = {
    {"plain", [](BookFile&) {}},
    {"prefixed_elements",
     [](BookFile& file) {
       file.part("xl/sheet1.xml", "<x:worksheet xmlns:x='" + std::string(main_space) +
                                      "'><x:sheetData><x:row r='1'><x:c r='A1'><x:v>42</x:v></x:c>"
                                      "</x:row></x:sheetData></x:worksheet>");
     }},
    {"strict_vocabulary",
     [](BookFile& file) {
       file.edit("xl/sheet1.xml", std::string(main_space),
                 "http://purl.oclc.org/ooxml/spreadsheetml/main")
           .edit("xl/workbook.xml", std::string(rel_space),
                 "http://purl.oclc.org/ooxml/officeDocument/relationships")
           .edit("_rels/.rels", std::string(rel_space),
                 "http://purl.oclc.org/ooxml/officeDocument/relationships");
     }},
    {"other_relationship_prefix",
     [](BookFile& file) {
       file.edit("xl/workbook.xml", "xmlns:r=", "xmlns:rel=")
           .edit("xl/workbook.xml", "r:id", "rel:id");
     }},
    {"byte_order_mark",
     [](BookFile& file) { file.edit("xl/sheet1.xml", "<?xml", "\xEF\xBB\xBF<?xml"); }},
    {"utf16_part",
     [](BookFile& file) {
       file.part("xl/sheet1.xml", utf16("<worksheet xmlns='" + std::string(main_space) + "'>" +
                                        one_value + "</worksheet>"));
     }},
    {"no_package_relationships", [](BookFile& file) { file.remove("_rels/.rels"); }},
    {"workbook_elsewhere",
     [](BookFile& file) {
       file.rename("xl/workbook.xml", "books/main.xml")
           .remove("xl/_rels/workbook.xml.rels")
           .links("", {{"a", "officeDocument", "/books/main.xml"}})
           .links("books/main.xml", {{"r1", "worksheet", "../xl/sheet1.xml"}});
     }},
    {"letter_case_of_parts", [](BookFile& file) { file.rename("xl/sheet1.xml", "XL/Sheet1.XML"); }},
    {"backslashes_in_part_names",
     [](BookFile& file) {
       for (const char* part : {"xl/workbook.xml", "xl/sheet1.xml", "xl/_rels/workbook.xml.rels"}) {
         std::string name = part;
         std::replace(name.begin(), name.end(), '/', '\\');
         file.rename(part, name);
       }
     }},
    {"absolute_target",
     [](BookFile& file) {
       file.edit("xl/_rels/workbook.xml.rels", "sheet1.xml", "/xl/sheet1.xml");
     }},
    {"percent_encoded_target",
     [](BookFile& file) {
       file.rename("xl/sheet1.xml", "xl/my sheet.xml")
           .edit("xl/_rels/workbook.xml.rels", "sheet1.xml", "my%20sheet.xml");
     }},
    {"entries_that_climb_out",
     [](BookFile& file) {
       file.part("../xl/sheet1.xml", "<wrong/>").part("xl/../../evil.txt", "x");
     }},
    {"alternate_content",
     [](BookFile& file) {
       file.part("xl/sheet1.xml",
                 "<worksheet xmlns='" + std::string(main_space) +
                     "' xmlns:mc='http://schemas.openxmlformats.org/markup-compatibility/2006'>"
                     "<mc:AlternateContent><mc:Choice Requires='x'><sheetData><row><c><v>1</v></c>"
                     "</row></sheetData></mc:Choice><mc:Fallback>" +
                     one_value + "</mc:Fallback></mc:AlternateContent></worksheet>");
     }},
    {"foreign_elements",
     [](BookFile& file) {
       file.sheet(
           "<sheetData><row r='1'><c r='A1'><v>42</v><x:v xmlns:x='urn:x'>7</x:v></c></row>"
           "</sheetData><extLst><ext><f xmlns='urn:y'>1</f></ext></extLst>");
     }},
};

class PackagingTest : public testing::TestWithParam<Packaging> {};

TEST_P(PackagingTest, IsRead) {
  BookFile file;
  file.workbook(one_sheet, {"worksheet"}).sheet(one_value);
  GetParam().change(file);
  EXPECT_EQ(shown(*file.open(), "Sheet1", "A1"), "42");
}

INSTANTIATE_TEST_SUITE_P(Workbook, PackagingTest, testing::ValuesIn(packagings),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Package, OfTwoEntriesWithOneNameTheFirstCounts) {
  BookFile file;
  file.cells("<row><c><v>1</v></c></row>")
      .part("xl/sheet2.xml",
            root("worksheet", "<sheetData><row><c><v>2</v></c></row></sheetData>"));
  std::string bytes = file.bytes();
  for (std::size_t at = bytes.find("sheet2.xml"); at != std::string::npos;
       at = bytes.find("sheet2.xml"))
    bytes.replace(at, 10, "SHEET1.xml");
  const TemporaryFile twice("twice.xlsx", bytes);
  EXPECT_EQ(shown(*open_workbook(twice.path()), "Sheet1", "A1"), "1");
}

}  // namespace
}  // namespace qto::test
