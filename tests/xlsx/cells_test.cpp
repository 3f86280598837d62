#include <gtest/gtest.h>

#include <string>

#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using embedded::Book;

std::string one_cell(const std::string& cell) {
  const auto book = BookFile()
                        .strings("<si><t>zero</t></si><si><t>one</t></si>")
                        .cells("<row r=\"1\">" + cell + "</row>")
                        .open();
  return shown(*book, "Sheet1", "A1");
}

TEST(Cells, ValuesOfEveryType) {
  struct Case {
    const char* cell;
    const char* shown;
  };
  for (const Case& c :
       {Case{"<c r='A1'><v>1.5</v></c>", "1.5"},
        {"<c r='A1' t='n'><v>-1E3</v></c>", "-1000"},
        {"<c r='A1' t='s'><v>1</v></c>", "\"one\""},
        {"<c r='A1' t='str'><v>a_x000A_b</v></c>", "\"a\nb\""},
        {"<c r='A1' t='str'><v></v></c>", "\"\""},
        {"<c r='A1' t='b'><v>1</v></c>", "TRUE"},
        {"<c r='A1' t='b'><v>0</v></c>", "FALSE"},
        {"<c r='A1' t='e'><v>#DIV/0!</v></c>", "#DIV/0!"},
        {"<c r='A1' t='e'><v>#N/A</v></c>", "#N/A"},
        {"<c r='A1' t='e'><v>#SPILL!</v></c>", "#SPILL!"},
        {"<c r='A1' t='e'><v>#FUTURE!</v></c>", "#VALUE!"},
        {"<c r='A1' t='d'><v>2024-03-01</v></c>", "45352"},
        {"<c r='A1' t='d'><v>someday</v></c>", "\"someday\""},
        {"<c r='A1' t='inlineStr'><is><t> two </t></is></c>", "\" two \""},
        {"<c r='A1' t='inlineStr'><is><r><rPr/><t>a</t></r><r><t>b</t></r></is></c>", "\"ab\""},
        {"<c r='A1' t='inlineStr'><is><t>kanji</t><rPh sb='0' eb='1'><t>hint</t></rPh></is></c>",
         "\"kanji\""},
        {"<c r='A1' t='inlineStr'><v>x</v></c>", "\"x\""},
        {"<c r='A1'><is><t>x</t></is></c>", "\"x\""},
        {"<c r='A1'><v>1,5</v></c>", "\"1,5\""},
        {"<c r='A1'><v>1e999</v></c>", "\"1e999\""},
        {"<c r='A1'><v></v></c>", ""},
        {"<c r='A1'><v/></c>", ""},
        {"<c r='A1'/>", ""},
        {"<c r='A1' t='s'><v>x</v></c>", ""},
        {"<c t='str' r='A1'><v><![CDATA[<&>]]></v></c>", "\"<&>\""},
        {"<c t='str' r='A1'><v>&lt;&#x20AC;&amp;</v></c>", "\"<€&\""},
        {"<c><v>7</v></c>", "7"}})
    EXPECT_EQ(one_cell(c.cell), c.shown) << c.cell;
}

TEST(Cells, SharedStringsJoinRunsAndKeepSpaces) {
  const auto book = BookFile()
                        .strings(
                            "<si><t xml:space='preserve'> a </t></si>"
                            "<si><r><t>bold</t></r><r><t xml:space='preserve'> thin</t></r>"
                            "<rPh sb='0' eb='1'><t>hint</t></rPh></si><si/><si><t/></si>")
                        .cells(
                            "<row><c t='s'><v>0</v></c><c t='s'><v>1</v></c>"
                            "<c t='s'><v>2</v></c><c t='s'><v>3</v></c></row>")
                        .open();
  EXPECT_EQ(shown(*book, "Sheet1", "A1"), "\" a \"");
  EXPECT_EQ(shown(*book, "Sheet1", "B1"), "\"bold thin\"");
  EXPECT_EQ(shown(*book, "Sheet1", "C1"), "\"\"");
  EXPECT_EQ(shown(*book, "Sheet1", "D1"), "\"\"");
}

TEST(Cells, LongTextsAreCut) {
  const std::string wide(40'000, 'x');
  const auto book = BookFile()
                        .strings("<si><t>" + wide + "</t></si>")
                        .cells("<row><c t='s'><v>0</v></c><c t='str'><v>" + wide + "</v></c></row>")
                        .open();
  EXPECT_EQ(shown(*book, "Sheet1", "A1").size(), 32'767u + 2);
  EXPECT_EQ(shown(*book, "Sheet1", "B1").size(), 32'767u + 2);
}

TEST(Cells, PositionsMayBeLeftOut) {
  const auto book = BookFile()
                        .cells(
                            "<row><c><v>1</v></c><c r='D1'><v>2</v></c><c><v>3</v></c></row>"
                            "<row><c><v>4</v></c></row><row r='9'><c><v>5</v></c></row>"
                            "<row><c><v>6</v></c></row>")
                        .open();
  for (const auto& [cell, value] :
       {std::pair{"A1", "1"}, {"D1", "2"}, {"E1", "3"}, {"A2", "4"}, {"A9", "5"}, {"A10", "6"}})
    EXPECT_EQ(shown(*book, "Sheet1", cell), value) << cell;
}

TEST(Cells, TheLastOfSeveralCellsCounts) {
  const auto book = BookFile()
                        .cells(
                            "<row r='2'><c r='A2'><f>1+1</f><v>1</v></c></row>"
                            "<row r='1'><c r='B1'><v>9</v></c><c r='A1'><v>1</v></c>"
                            "<c r='A1'><v>3</v></c></row>"
                            "<row r='2'><c r='A2'><v>4</v></c></row>"
                            "<row r='1'><c r='B1'/></row>")
                        .open();
  EXPECT_EQ(shown(*book, "Sheet1", "A1"), "3");
  EXPECT_EQ(shown(*book, "Sheet1", "A2"), "4");
  EXPECT_EQ(formula(*book, "Sheet1", "A2"), "");
  EXPECT_EQ(shown(*book, "Sheet1", "B1"), "");
  EXPECT_EQ(sheet_of(*book, "Sheet1").cells.formula_count(), 0);
}

TEST(Cells, WhatLiesOutsideTheGridIsIgnored) {
  const auto book =
      BookFile()
          .cells(
              "<row r='0'><c r='A0'><v>1</v></c><c><v>1</v></c></row>"
              "<row r='-1'><c r='A-1'><v>1</v></c></row>"
              "<row r='4294967297'><c r='A4294967297'><v>1</v></c><c><v>1</v></c></row>"
              "<row r='1048577'><c><v>1</v></c></row>"
              "<row r='3'><c r='XFE3'><v>1</v></c><c r='?'><v>1</v></c><c r=''><v>1</v></c>"
              "<c r='A'><v>1</v></c><c r='3'><v>1</v></c><c r='XFD3'><v>2</v></c></row>"
              "<row r='1048576'><c r='A1048576'><v>5</v></c></row>")
          .open();
  const auto& cells = sheet_of(*book, "Sheet1").cells;
  EXPECT_EQ(cells.cell_count(), 2);
  EXPECT_EQ(shown(*book, "Sheet1", "XFD3"), "2");
  EXPECT_EQ(shown(*book, "Sheet1", "A1048576"), "5");
}

TEST(Cells, ManyAttributesCostNothing) {
  std::string attributes;
  for (int i = 0; i < 50'000; ++i) attributes += " a" + std::to_string(i) + "='1'";
  EXPECT_EQ(one_cell("<c r='A1'" + attributes + "><v>1</v></c>"), "1");
}

TEST(Cells, StylesNumberFormatsAndProtection) {
  const auto book =
      BookFile()
          .styles(
              "<numFmts><numFmt numFmtId='164' formatCode='0.0&quot;x&quot;'/></numFmts>"
              "<cellStyleXfs><xf numFmtId='0'/><xf><protection locked='0'/></xf>"
              "</cellStyleXfs><cellXfs><xf numFmtId='0'/><xf numFmtId='14'/>"
              "<xf numFmtId='164'><protection hidden='1'/></xf><xf numFmtId='9' xfId='1'/>"
              "</cellXfs><dxfs><dxf><numFmt numFmtId='165' formatCode='@'/></dxf></dxfs>")
          .cells("<row><c s='1'><v>45352</v></c><c s='2'/><c s='3'/><c s='99'><v>1</v></c></row>")
          .open();
  const auto style = [&](const char* cell) {
    return book->styles.at(sheet_of(*book, "Sheet1").cells.find(parse_cell(cell)->pos)->style());
  };
  EXPECT_TRUE(style("A1").format->is_date());
  EXPECT_EQ(style("B1").format_code, "0.0\"x\"");
  EXPECT_TRUE(style("B1").locked);
  EXPECT_TRUE(style("B1").formula_hidden);
  EXPECT_EQ(style("C1").format_code, "0%");
  EXPECT_FALSE(style("C1").locked);
  EXPECT_EQ(style("D1").format_code, "General");
}

}  // namespace
}  // namespace qto::test
