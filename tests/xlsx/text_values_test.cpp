#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>

#include "qto/hosts/embedded/xlsx/external_target.hpp"
#include "qto/hosts/embedded/xlsx/part_path.hpp"
#include "qto/hosts/embedded/xlsx/workbook_part.hpp"
#include "qto/hosts/embedded/xlsx/xml_value.hpp"
#include "tests/support/local_path.hpp"

namespace qto::embedded {
namespace {

TEST(XmlValues, NumbersAreReadWithoutLocale) {
  struct Case {
    const char* text;
    std::optional<double> number;
  };
  for (const Case& c : {Case{"1", 1},
                        {" 1.5\n", 1.5},
                        {"+2", 2},
                        {"-0.25E2", -25},
                        {"1e-400", 0},
                        {"1,5", {}},
                        {"1 5", {}},
                        {"", {}},
                        {"+", {}},
                        {"+-1", {}},
                        {"1e999", {}},
                        {"inf", {}},
                        {"NaN", {}},
                        {"0x10", {}},
                        {"1.2.3", {}},
                        {"1d", {}}})
    EXPECT_EQ(real_number(c.text), c.number) << c.text;
  EXPECT_EQ(whole_number("4294967297"), 4294967297);
  EXPECT_FALSE(whole_number("99999999999999999999"));
  EXPECT_FALSE(whole_number("1.0"));
}

TEST(XmlValues, EscapesBecomeCharacters) {
  struct Case {
    const char* text;
    const char* decoded;
  };
  for (const Case& c : {Case{"plain", "plain"},
                        {"a_x000D_b", "a\rb"},
                        {"_x000a__x000A_", "\n\n"},
                        {"_x005F_x000D_", "_x000D_"},
                        {"_xlfn.CONCAT", "_xlfn.CONCAT"},
                        {"_x00_", "_x00_"},
                        {"_x000G_", "_x000G_"},
                        {"end_x00", "end_x00"},
                        {"_xD83D__xDE00_!", "😀!"},
                        {"__x0041_", "_A"}}) {
    std::string text = c.text;
    decode_escapes(text);
    EXPECT_EQ(text, c.decoded) << c.text;
  }
}

TEST(XmlValues, TextsAreCutBetweenCharacters) {
  struct Case {
    const char* text;
    std::size_t units;
    const char* cut;
  };
  for (const Case& c : {Case{"abc", 3, "abc"},
                        {"abc", 2, "ab"},
                        {"äöü", 2, "äö"},
                        {"€€", 1, "€"},
                        {"😀b", 1, ""},
                        {"😀b", 2, "😀"},
                        {"", 0, ""}}) {
    std::string text = c.text;
    cut_to_units(text, c.units);
    EXPECT_EQ(text, c.cut) << c.text;
  }
}

TEST(XmlValues, IsoMomentsBecomeSerials) {
  struct Case {
    const char* text;
    bool date1904;
    std::optional<double> serial;
  };
  for (const Case& c : {Case{"1900-01-01", false, 1},
                        {"1900-03-01", false, 61},
                        {"2024-03-01", false, 45352},
                        {"2024-03-01", true, 43890},
                        {"2024-03-01T12:00:00", false, 45352.5},
                        {"2024-03-01T06:00:00.000Z", false, 45352.25},
                        {"T18:00", false, 0.75},
                        {"18:00:00", false, 0.75},
                        {"2024-13-01", false, {}},
                        {"2023-02-29", false, {}},
                        {"2024-03-01T25:00", false, {}},
                        {"2024-03-01x", false, {}},
                        {"soon", false, {}},
                        {"", false, {}},
                        {"2024", false, {}},
                        {"T1", false, {}}}) {
    const auto serial = serial_of_iso(c.text, c.date1904);
    ASSERT_EQ(serial.has_value(), c.serial.has_value()) << c.text;
    if (serial) {
      EXPECT_NEAR(*serial, *c.serial, 1e-9) << c.text;
    }
  }
}

TEST(PartPaths, TargetsResolveAgainstTheirOwner) {
  struct Case {
    const char* owner;
    const char* target;
    const char* part;
  };
  for (const Case& c :
       {Case{"", "xl/workbook.xml", "xl/workbook.xml"},
        {"", "/xl/workbook.xml", "xl/workbook.xml"},
        {"xl/workbook.xml", "worksheets/sheet1.xml", "xl/worksheets/sheet1.xml"},
        {"xl/worksheets/sheet1.xml", "../tables/table1.xml", "xl/tables/table1.xml"},
        {"xl/workbook.xml", "/xl/styles.xml", "xl/styles.xml"},
        {"xl/workbook.xml", "worksheets\\sheet1.xml", "xl/worksheets/sheet1.xml"},
        {"xl/workbook.xml", "./a/./b.xml", "xl/a/b.xml"},
        {"xl/workbook.xml", "../../../etc/passwd", "etc/passwd"},
        {"xl/workbook.xml", "", "xl"}})
    EXPECT_EQ(resolve_part(c.owner, c.target), c.part) << c.target;
  EXPECT_EQ(relationships_part_of("xl/workbook.xml"), "xl/_rels/workbook.xml.rels");
  EXPECT_EQ(relationships_part_of(""), "_rels/.rels");
  EXPECT_EQ(part_key("\\XL\\My%20Sheet.xml"), "xl/my sheet.xml");
  EXPECT_EQ(percent_decoded("100%, 5%2, %zz, %41"), "100%, 5%2, %zz, A");
}

TEST(ExternalTargets, FolderAndNameOfEveryForm) {
  struct Case {
    const char* target;
    const char* folder;
    const char* name;
  };
  for (const Case& c :
       {Case{"Book2.xlsx", "/home/me/plans/", "Book2.xlsx"},
        {"../data/Book%202.xlsx", "/home/me/data/", "Book 2.xlsx"},
        {"sub\\Book2.xlsx", "/home/me/plans/sub/", "Book2.xlsx"},
        {"/srv/data/Book2.xlsx", "/srv/data/", "Book2.xlsx"},
        {"file:///D:\\Data\\Book2.xlsx", "D:\\Data\\", "Book2.xlsx"},
        {"file:///D:/My%20Data/Book2.xlsx", "D:\\My Data\\", "Book2.xlsx"},
        {"FILE:///home/you/Book2.xlsx", "/home/you/", "Book2.xlsx"},
        {"file:///\\\\server\\share\\Book2.xlsx", "\\\\server\\share\\", "Book2.xlsx"},
        {"file://server/share/Book2.xlsx", "\\\\server\\share\\", "Book2.xlsx"},
        {"\\\\server\\share\\Book2.xlsx", "\\\\server\\share\\", "Book2.xlsx"},
        {"C:\\Book2.xlsx", "C:\\", "Book2.xlsx"},
        {"https://example.com/a%20b/Book2.xlsx", "https://example.com/a%20b/", "Book2.xlsx"},
        {"", "/home/me/plans/", ""}})
    EXPECT_EQ(locate_target(c.target, "/home/me/plans"),
              (FileLocation{test::local_folder(c.target, c.folder), c.name}))
        << c.target;
  EXPECT_EQ(locate_target("Book2.xlsx", ""), (FileLocation{"", "Book2.xlsx"}));
}

TEST(SheetNames, AreNeverEmptyAndNeverTheSame) {
  SheetNames names;
  EXPECT_EQ(names.unique("Data"), "Data");
  EXPECT_EQ(names.unique("DATA"), "DATA (2)");
  EXPECT_EQ(names.unique("data"), "data (3)");
  EXPECT_EQ(names.unique("data (4)"), "data (4)");
  EXPECT_EQ(names.unique("Data"), "Data (5)");
  EXPECT_EQ(names.unique(""), "Sheet1");
  EXPECT_EQ(names.unique("Sheet1"), "Sheet1 (2)");
  EXPECT_EQ(names.unique(""), "Sheet2");
}

}  // namespace
}  // namespace qto::embedded
