#include <gtest/gtest.h>

#include "qto/links/main.hpp"
#include "qto/parser/parser.hpp"
#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

class TokenTypes : public testing::Test {
 protected:
  TokenTypes()
      : books_("A1=1; Sheet2!A1=2; Z9==A1; name Total=Sheet1!$A$1; name Sheet2!Local=Sheet2!$A$1") {
    books_.add("A1=1; name Rate=Sheet1!$A$1", "Book2.xlsx");
    Main::set_shared_application(books_.app);
    part_->Create(books_.range("Z9"), "Range");
    parser_.enter_part(*part_);
  }
  ~TokenTypes() override { Main::set_shared_application(nullptr); }

  /// One line of text and type per token, as "A1 RANGE, + END TOKEN".
  std::string types(std::string_view formula) {
    parser_.split_formula(formula, table_);
    std::string out;
    for (const Token& token : table_.tokens) {
      if (!out.empty()) out += ", ";
      out.append(token.text).append(" ").append(token_type_name(token));
    }
    return out;
  }

  Books books_;
  Ref<ModelPart> part_ = make_ref<ModelPart>();
  Parser parser_;
  TokenTable table_;
};

TEST_F(TokenTypes, AreToldByPlaceAndHost) {
  const struct {
    const char* formula;
    const char* types;
  } rows[] = {
      {"=SUM(A1:B2,Sheet2!C3)",
       "SUM FUNCTION, ( END TOKEN, A1:B2 RANGE, , END TOKEN, Sheet2 WORKSHEET, ! END TOKEN, "
       "C3 RANGE, ) END TOKEN"},
      {"='D:\\Data\\[Book 1.xls]Sheet 1'!$A$1",
       "D:\\Data\\ PATH NAME, [ END TOKEN, Book 1.xls WORKBOOK, ] END TOKEN, Sheet 1 WORKSHEET, "
       "! END TOKEN, $A$1 RANGE"},
      {"=[Book2.xls]Sheet1!A1",
       "[ END TOKEN, Book2.xls WORKBOOK, ] END TOKEN, Sheet1 WORKSHEET, ! END TOKEN, A1 RANGE"},
      {"='D:\\Data\\Book2.xls'!Total2",
       "D:\\Data PATH NAME, \\ END TOKEN, Book2.xls WORKBOOK, ! END TOKEN, Total2 POSSIBLE NAME"},
      {"=#DIV/0!", "#DIV ERROR CONSTANT, / END TOKEN, 0 WORKSHEET, ! END TOKEN"},
      {"=#N/A", "#N ERROR CONSTANT, / END TOKEN, A POSSIBLE NAME"},
      {"=#NAME?", "#NAME ERROR CONSTANT, ? END TOKEN"},
      {"=#REF!+A1", "#REF WORKSHEET, ! END TOKEN, + END TOKEN, A1 RANGE"},
      {"=1E+30", "1E POSSIBLE NAME, + END TOKEN, 30 CONSTANT"},
      {"=50%", "50 CONSTANT, % END TOKEN"},
      {"=-A1", "- END TOKEN, A1 RANGE"},
      {"=A1 + B1", "A1  RANGE, + END TOKEN,  B1 RANGE"},
      {"=A1:B9 B2:C3", "A1:B9 B2:C3 RANGE"},
      {"=TRUE,FALSE,true",
       "TRUE CONSTANT, , END TOKEN, FALSE CONSTANT, , END TOKEN, "
       "true POSSIBLE NAME"},
      {"=\"a\"&\"b\"\"c\"", "\"a\" STRING, & END TOKEN, \"b\" STRING, \"c\" STRING"},
      {"=if(A1,match(1,2))",
       "if if, ( END TOKEN, A1 RANGE, , END TOKEN, match match, ( END TOKEN, 1 CONSTANT, "
       ", END TOKEN, 2 CONSTANT, ) END TOKEN, ) END TOKEN"},
      {"=IF(INDEX(A:A,1),VLOOKUP)",
       "IF IF, ( END TOKEN, INDEX INDEX, ( END TOKEN, A:A RANGE, , END TOKEN, 1 CONSTANT, "
       ") END TOKEN, , END TOKEN, VLOOKUP POSSIBLE NAME, ) END TOKEN"},
      {"=WINWORD|'D:\\Docs\\Report.doc'!Link1",
       "WINWORD APPLICATION, | PIPE, 'D:\\Docs\\Report.doc' DOCUMENT, ! END TOKEN, Link1 LINK"},
      {"=Excel|[Book2.xls]!A1",
       "Excel APPLICATION, | PIPE, [ DOCUMENT, Book2.xls WORKBOOK, ] LINK, ! END TOKEN, A1 RANGE"},
      {"=Total+TOTAL", "Total WORKBOOK NAME, + END TOKEN, TOTAL WORKBOOK NAME"},
      {"=Sheet2!Local", "Sheet2 WORKSHEET, ! END TOKEN, Local WORKSHEET NAME"},
      {"=Sheet2!Total", "Sheet2 WORKSHEET, ! END TOKEN, Total WORKBOOK NAME"},
      {"=Local", "Local POSSIBLE NAME"},
      {"=Book2.xlsx!Rate", "Book2.xlsx WORKSHEET, ! END TOKEN, Rate WORKBOOK NAME"},
      {"=[Book2.xlsx]Sheet1!Rate",
       "[ END TOKEN, Book2.xlsx WORKBOOK, ] END TOKEN, Sheet1 WORKSHEET, ! END TOKEN, "
       "Rate WORKBOOK NAME"},
      {"=Rate", "Rate POSSIBLE NAME"},
      {"=[5]", "[ END TOKEN, 5 CONSTANT, ] END TOKEN"},  // a number wins over the bracket
      {"=(A1) * 2",
       "( END TOKEN, A1 RANGE, ) END TOKEN,   POSSIBLE NAME, * END TOKEN,  2 CONSTANT"},
      {"=XFE1+A1048577", "XFE1 POSSIBLE NAME, + END TOKEN, A1048577 POSSIBLE NAME"},
  };
  const Reports reports;
  for (const auto& row : rows) EXPECT_EQ(types(row.formula), row.types) << row.formula;
  EXPECT_EQ(reports.text(), "");
}

TEST_F(TokenTypes, ALinkWithoutItsItemIsReportedAndGivesNoTokens) {
  const Reports reports;
  EXPECT_EQ(types("=A1|B1"), "");
  EXPECT_EQ(reports.text(), " !9");
}

TEST_F(TokenTypes, NamesAreLookedForWhereTheirQualifierSays) {
  const struct {
    const char* name;
    const char* book;
    const char* sheet;
    TokenType type;
  } rows[] = {{"Total", "", "", TokenType::workbook_name},
              {"Local", "", "", TokenType::none},
              {"Local", "", "Sheet2", TokenType::worksheet_name},
              {"Local", "Plan.xlsx", "sheet2", TokenType::worksheet_name},
              {"Rate", "", "Book2.xlsx", TokenType::workbook_name},
              {"Rate", "Book2.xlsx", "", TokenType::workbook_name},
              {"Rate", "Far.xlsx", "", TokenType::none},
              {"", "", "", TokenType::none}};
  for (const auto& row : rows)
    EXPECT_EQ(parser_.name_type(row.name, row.book, row.sheet), row.type) << row.name << row.sheet;
  EXPECT_TRUE(parser_.is_book_open("book2.XLSX"));
  EXPECT_FALSE(parser_.is_book_open("Far.xlsx"));
}

}  // namespace
}  // namespace qto::test
