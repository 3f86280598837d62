#include "tests/functions/formula_table.hpp"

namespace qto::embedded {
namespace {

TEST(Texts, CountUtf16Units) {
  expect_results("A1=Straße; A2=a😀b; A3=ÄÖ", {{"=LEN(A1)", "6"},
                                              {"=LEN(A2)", "4"},
                                              {"=MID(A1,5,2)", "ße"},
                                              {"=RIGHT(A2,1)", "b"},
                                              {"=LEFT(A2,3)", "a😀"},
                                              {"=UPPER(A1)", "STRASSE"},
                                              {"=LOWER(A3)", "äö"},
                                              {"=PROPER(\"it's élan 2ND\")", "It'S Élan 2Nd"},
                                              {"=FIND(\"ß\",A1)", "5"},
                                              {"=SEARCH(\"SE\",\"Reise\")", "4"},
                                              {"=REPLACE(A1,5,1,\"ss\")", "Strasse"},
                                              {"=LEFT(\"abc\",-1)", "#VALUE!"},
                                              {"=MID(\"abc\",0,1)", "#VALUE!"},
                                              {"=REPT(\"ab\",20000)", "#VALUE!"}});
}

TEST(Texts, Convert) {
  expect_results("", {{"=TEXT(0.285,\"0.0%\")", "28.5%"},
                      {"=TEXT(45352,\"yyyy-mm-dd\")", "2024-03-01"},
                      {"=TEXT(\"abc\",\"0.00\")", "abc"},
                      {"=TEXT(\"1.5\",\"0.00\")", "1.50"},
                      {"=TEXT(-1,\"yyyy\")", "#VALUE!"},
                      {"=VALUE(\"$1,234.50\")", "1234.5"},
                      {"=VALUE(\"x\")", "#VALUE!"},
                      {"=VALUE(TRUE)", "#VALUE!"},
                      {"=FIXED(-1234.567)", "-1,234.57"},
                      {"=FIXED(1234.567,-2,TRUE)", "1200"},
                      {"=DOLLAR(5)", "$5.00"},
                      {"=CODE(CHAR(128))", "128"},
                      {"=UNICODE(UNICHAR(128512))", "128512"},
                      {"=TEXTJOIN({\"-\",\"+\"},FALSE,1,2,3)", "1-2+3"}});
}

TEST(Rounding, IsThatOfDecimals) {
  expect_results("", {{"=ROUND(1.005,2)", "1.01"},
                      {"=ROUND(-2.5,0)", "-3"},
                      {"=ROUND(1234.5,-2)", "1200"},
                      {"=ROUNDUP(1.1,1)", "1.1"},
                      {"=ROUNDDOWN(1.15,2)", "1.15"},
                      {"=TRUNC(-1.99,1)", "-1.9"},
                      {"=INT(-0.5)", "-1"},
                      {"=CEILING(-2.5,-2)", "-4"},
                      {"=CEILING(2.5,-2)", "#NUM!"},
                      {"=FLOOR(0.7,0.1)", "0.7"},
                      {"=MROUND(6.05,0.1)", "6.1"},
                      {"=MOD(1,0.1)", "0"},
                      {"=MOD(5,0)", "#DIV/0!"},
                      {"=EVEN(-1)", "-2"}});
}

TEST(Dates, FollowTheCalendarOfSpreadsheets) {
  expect_results("", {{"=DATE(1900,2,29)", "60"},
                      {"=DATE(2024,13,1)", "45658"},
                      {"=DATE(2024,1,0)", "45291"},
                      {"=DATE(10000,1,1)", "#NUM!"},
                      {"=DATE(-1,1,1)", "#NUM!"},
                      {"=DAY(0)", "0"},
                      {"=DAY(60)", "29"},
                      {"=YEAR(-1)", "#NUM!"},
                      {"=MONTH(\"15 March 2024\")", "3"},
                      {"=EDATE(DATE(2024,1,31),1)", "45351"},
                      {"=EDATE(1,-1)", "#NUM!"},
                      {"=WEEKDAY(1)", "1"},
                      {"=WEEKDAY(45352,2)", "5"},
                      {"=WEEKNUM(45292,21)", "1"},
                      {"=DATEDIF(45292,45657,\"YD\")", "365"},
                      {"=DATEDIF(10,5,\"D\")", "#NUM!"},
                      {"=DAYS360(DATE(2024,2,29),DATE(2024,3,31))", "30"},
                      {"=YEARFRAC(DATE(2023,1,1),DATE(2024,1,1),1)", "1"},
                      {"=WORKDAY(45352,-1,{45351})", "45350"},
                      {"=NETWORKDAYS(45355,45352)", "-2"},
                      {"=HOUR(\"6:30 PM\")", "18"},
                      {"=TIME(25,0,0)*24", "1"},
                      {"=TODAY()", "45352"},
                      {"=NOW()", "45352.5"}});
}

TEST(Dates, CountFrom1904WhereTheBookDoes) {
  SmallBook book;
  book.book.date1904 = true;
  EXPECT_EQ(book.run("=DATE(1904,1,2)"), "1");
  EXPECT_EQ(book.run("=YEAR(0)"), "1904");
  EXPECT_EQ(book.run("=TODAY()"), "43890");
}

}  // namespace
}  // namespace qto::embedded
