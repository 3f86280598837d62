#include <gtest/gtest.h>

#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"

namespace qto::embedded {
namespace {

class RenderTest : public testing::Test {
 protected:
  RenderTest() {
    book_.name = "Own.xlsx";
    other_ = &book_.add_sheet("Other");
    Table sales;
    sales.name = "Sales";
    sales.sheet = sheet_;
    sales.range = {{10, 2}, {15, 4}};
    sales.totals_rows = 1;
    sales.columns = {"Amount", "Price [x]", "2007"};
    book_.add_table(sales);
    add_link("D:\\Data\\", "Book2.xlsx");
    add_link("", "It's 3.xlsx");
    ExternalBook application;
    application.kind = ExternalBook::Kind::dde;
    application.application = "App";
    application.document = "my doc";
    book_.externals.push_back(application);
  }

  void add_link(std::string folder, std::string name) {
    ExternalBook link;
    link.folder = std::move(folder);
    link.name = std::move(name);
    book_.externals.push_back(link);
  }

  RenderContext context(std::string_view cell, bool open = false) const {
    RenderContext context;
    context.book = &book_;
    context.sheet = sheet_;
    context.at = parse_cell(cell)->pos;
    context.data = &linked_;
    if (open)
      context.find_open = [](const Book&, std::uint32_t, const void* book) {
        return static_cast<const Book*>(book);
      };
    return context;
  }

  std::string formula(std::string_view text, std::string_view base, std::string_view at) {
    std::string out;
    CompiledFormula::compile(text, parse_cell(base)->pos)->append_formula(out, context(at));
    return out;
  }
  std::string open_formula(std::string_view text) {
    std::string out;
    CompiledFormula::compile(text, {1, 1})->append_formula(out, context("A1", true));
    return out;
  }
  std::string local(std::string_view text, std::string_view at = "A1") {
    std::string out;
    CompiledFormula::compile(text, {1, 1})->append_local(out, context(at));
    return out;
  }
  std::string r1c1(std::string_view text, std::string_view base) {
    std::string out;
    CompiledFormula::compile(text, parse_cell(base)->pos)->append_r1c1(out, context(base));
    return out;
  }

  Book book_;
  Book linked_;
  Sheet* sheet_ = &book_.add_sheet("Sheet1");
  Sheet* other_ = nullptr;
};

TEST_F(RenderTest, ReferencesMoveWithTheirCell) {
  const struct {
    std::string_view text, base, at, expected;
  } rows[] = {
      {"B1+A2", "B2", "B2", "=B1+A2"},
      {"B1+A2", "B2", "D9", "=D8+C9"},
      {"=$A1*A$1*$A$1", "B2", "C4", "=$A3*B$1*$A$1"},
      {"SUM(B$2:B2)", "C2", "C5", "=SUM(B$2:B5)"},
      {"SUM(B$2:B2)", "C9", "C3", "=SUM(B$2:B1048572)"},
      {"A5:B$5", "A5", "A1", "=A1:B$5"},
      {"SUM(A:A,3:3)", "D3", "E5", "=SUM(B:B,5:5)"},
      {"SUM($A:C)", "D3", "E5", "=SUM($A:D)"},
      {" A1 +\r\n\"A1\"", "A1", "B2", "= B2 +\r\n\"A1\""},
      {"A1", "B2", "A1", "=XFD1048576"},
      {"XFD1048576", "XFD1048576", "A1", "=A1"},
      {"Other!A1+'It''s'!A1", "A1", "A2", "=Other!A2+'It''s'!A2"},
      {"SUM(Sheet1:Other!B2)", "A1", "A2", "=SUM(Sheet1:Other!B3)"},
      {"ABC1+AAA1+ZZ1", "A1", "A1", "=ABC1+AAA1+ZZ1"},
      {"#REF!A1+Sheet1!#REF!", "A1", "A2", "=#REF!A2+Sheet1!#REF!"},
      {"LOG10(A1)", "A1", "A2", "=LOG10(A2)"},
      {"A1:INDEX(B:B,A1)", "A1", "A2", "=A2:INDEX(B:B,A2)"},
      {"A1~+A1", "A1", "A2", "=A2~+A1"},
  };
  for (const auto& row : rows) EXPECT_EQ(formula(row.text, row.base, row.at), row.expected);
}

TEST_F(RenderTest, PrefixesAreDropped) {
  EXPECT_EQ(formula("_xlfn.XLOOKUP(1,A:A,B:B)", "A1", "A1"), "=XLOOKUP(1,A:A,B:B)");
  EXPECT_EQ(formula("_xlfn._xlws.SORT(A1:A3)", "A1", "A1"), "=SORT(A1:A3)");
  EXPECT_EQ(local("_xlfn.LET(_xlpm.x,1,_xlpm.x)"), "=LET(x,1,x)");
  EXPECT_EQ(formula("sum(true,MyUdf(1))", "A1", "A1"), "=SUM(TRUE,MyUdf(1))");
}

TEST_F(RenderTest, StructuredReferencesBecomeTheRangesThatTheyDenote) {
  const struct {
    std::string_view text, at, expected;
  } rows[] = {
      {"SUM(Sales[Amount])", "A1", "=SUM(B11:B14)"},
      {"SUM(sales[])", "A1", "=SUM(B11:D14)"},
      {"Sales[#All]", "A1", "=B10:D15"},
      {"Sales[[#Headers],[2007]]", "A1", "=D10"},
      {"Sales[2007]", "A1", "=D11:D14"},
      {"Sales[[#Totals],[Amount]:[2007]]", "A1", "=B15:D15"},
      {"Sales[[#Headers],[#Data],[Amount]]", "A1", "=B10:B14"},
      {"Sales[Price '[x']]", "A1", "=C11:C14"},
      {"Sales[@Amount]", "F12", "=B12"},
      {"[@Amount]*[@2007]", "C13", "=B13*D13"},
      {"Sales[[#This Row],[Amount]]", "A1", "=#VALUE!"},
      {"@Sales[Amount]", "F12", "=B12"},
      {"SUM(Sales)", "A1", "=SUM(B11:D14)"},
      {"VLOOKUP(3,sales,2)", "A1", "=VLOOKUP(3,B11:D14,2)"},
      {"SUM(Sales[Amount]:Sales[2007])", "A1", "=SUM(B11:D14)"},
      {"Sales[@2007]:Sales[@Amount]", "F12", "=B12:D12"},
      {"Sales[[#All],[Amount]:[Price '[x']]]", "A1", "=B10:C15"},
      {"Salesman+1", "A1", "=Salesman+1"},
      {"Sales[Nothing]", "A1", "=#REF!"},
      {"Nowhere[Amount]", "A1", "=#REF!"},
      {"[@Amount]", "A1", "=#REF!"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(formula(row.text, "A1", row.at), row.expected) << row.text;
    EXPECT_EQ(local(row.text, row.at), "=" + std::string(row.text));
  }
  EXPECT_EQ(formula("SUM([0]!Sales[Amount])", "A1", "A1"), "=SUM(B11:B14)");
  RenderContext elsewhere = context("A1");
  elsewhere.sheet = other_;
  std::string out;
  CompiledFormula::compile("Sales[Amount]", {1, 1})->append_formula(out, elsewhere);
  EXPECT_EQ(out, "=Sheet1!B11:B14");
  RenderContext name = context("A1");
  name.on_any_sheet = true;
  out.clear();
  CompiledFormula::compile("Sales[Amount]+Sales", {1, 1})->append_formula(out, name);
  EXPECT_EQ(out, "=Sheet1!$B$11:$B$14+Sheet1!$B$11:$D$14");
}

TEST_F(RenderTest, TablesOfOtherBooksShowTheirPlaceWhileTheBookIsOpen) {
  linked_.name = "Book2.xlsx";
  Table table;
  table.name = "TT";
  table.sheet = &linked_.add_sheet("My Data");
  table.range = {{1, 1}, {3, 2}};
  table.columns = {"K", "L"};
  linked_.add_table(table);
  EXPECT_EQ(open_formula("SUM([1]!TT[K])"), "=SUM('[Book2.xlsx]My Data'!A2:A3)");
  EXPECT_EQ(open_formula("SUM([1]!TT[K]:[1]!TT[L])"), "=SUM('[Book2.xlsx]My Data'!A2:B3)");
  EXPECT_EQ(open_formula("SUM([1]!TT)"), "=SUM('[Book2.xlsx]My Data'!A2:B3)");
  EXPECT_EQ(open_formula("[1]!Rate+1"), "=Book2.xlsx!Rate+1");
  EXPECT_EQ(formula("SUM([1]!TT[K])", "A1", "A1"), "=SUM('D:\\Data\\Book2.xlsx'!TT[K])");
  EXPECT_EQ(local("SUM([1]!TT[K])"), "=SUM('D:\\Data\\Book2.xlsx'!TT[K])");
}

TEST_F(RenderTest, MarksBecomeTheReferenceThatTheyDenote) {
  const Rect block{{1, 1}, {5, 1}};
  const FormulaId id = book_.add_formula(
      {FormulaKind::array, block, CompiledFormula::compile("ROW(1:5)", block.first)});
  other_->set_block_formula(block, id);
  const struct {
    std::string_view text, at, plain, local;
  } rows[] = {
      {"@A1:A9*2", "C4", "=A4*2", "=@A1:A9*2"},
      {"@$B:$B", "C4", "=B4", "=@$B:$B"},
      {"@A9:E9", "C4", "=C9", "=@A9:E9"},
      {"@A1:B9", "C4", "=A1:B9", "=@A1:B9"},
      {"@A1:A3", "C4", "=A1:A3", "=@A1:A3"},
      {"@Other!A1:A9", "C4", "=Other!A4", "=@Other!A1:A9"},
      {"_xlfn.SINGLE(A1:A9)", "C4", "=A4", "=@A1:A9"},
      {"_xlfn.SINGLE(INDEX(A:A,1))", "C4", "=INDEX(A:A,1)", "=@INDEX(A:A,1)"},
      {"_xlfn.SINGLE(A1+B1)", "C4", "=(A1+B1)", "=@(A1+B1)"},
      {"_xlfn.SINGLE(Rate)", "C4", "=Rate", "=@Rate"},
      {"SUM(Other!A1#)", "C4", "=SUM(Other!A1:A5)", "=SUM(Other!A1#)"},
      {"SUM(_xlfn.ANCHORARRAY(Other!$A$1))", "C4", "=SUM(Other!A1:A5)", "=SUM(Other!$A$1#)"},
      {"SUM(_xlfn.ANCHORARRAY(B2))", "C4", "=SUM(B2)", "=SUM(B2#)"},
      {"Spilled#", "C4", "=Spilled", "=Spilled#"},
      {"_xlfn.ANCHORARRAY(Rate)", "C4", "=Rate", "=Rate#"},
  };
  for (const auto& row : rows) {
    const auto compiled = CompiledFormula::compile(row.text, parse_cell(row.at)->pos);
    std::string plain, shown;
    compiled->append_formula(plain, context(row.at));
    compiled->append_local(shown, context(row.at));
    EXPECT_EQ(plain, row.plain);
    EXPECT_EQ(shown, row.local);
  }
}

TEST_F(RenderTest, LinkedBooksAreWrittenByNameOrPath) {
  const struct {
    std::string_view text, open, closed;
  } rows[] = {
      {"[1]Sheet1!A1", "=[Book2.xlsx]Sheet1!A1", "='D:\\Data\\[Book2.xlsx]Sheet1'!A1"},
      {"'[1]My Sheet'!A1", "='[Book2.xlsx]My Sheet'!A1", "='D:\\Data\\[Book2.xlsx]My Sheet'!A1"},
      {"[1]A:B!A1", "=[Book2.xlsx]A:B!A1", "='D:\\Data\\[Book2.xlsx]A:B'!A1"},
      {"[1]!Rate+1", "=Book2.xlsx!Rate+1", "='D:\\Data\\Book2.xlsx'!Rate+1"},
      {"[2]Sheet1!A1", "='[It''s 3.xlsx]Sheet1'!A1", "='[It''s 3.xlsx]Sheet1'!A1"},
      {"[2]!Rate", "='It''s 3.xlsx'!Rate", "='It''s 3.xlsx'!Rate"},
      {"[3]!item", "=App|'my doc'!item", "=App|'my doc'!item"},
      {"[3]!'an item'", "=App|'my doc'!'an item'", "=App|'my doc'!'an item'"},
      {"[0]!Rate", "=Own.xlsx!Rate", "=Own.xlsx!Rate"},
      {"[9]Sheet1!A1", "=[9]Sheet1!A1", "=[9]Sheet1!A1"},
      {"[1]!udf(1)", "=Book2.xlsx!UDF(1)", "='D:\\Data\\Book2.xlsx'!UDF(1)"},
      {"[Some.xlsx]S!A1", "=[Some.xlsx]S!A1", "=[Some.xlsx]S!A1"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(open_formula(row.text), row.open);
    EXPECT_EQ(formula(row.text, "A1", "A1"), row.closed);
    EXPECT_EQ(local(row.text), row.closed);
  }
}

TEST_F(RenderTest, R1C1) {
  EXPECT_EQ(r1c1("A1+$A$1+C3+$B4", "B2"), "=R[-1]C[-1]+R1C1+R[1]C[1]+R[2]C2");
  EXPECT_EQ(r1c1("SUM(B$1:B2)", "B2"), "=SUM(R1C:RC)");
  EXPECT_EQ(r1c1("SUM(A:A,$A:C,2:2,$3:3)", "B2"), "=SUM(C[-1],C1:C[1],R,R3:R[1])");
  EXPECT_EQ(r1c1("Other!A1&Sales[Amount]", "A1"), "=Other!RC&Sales[Amount]");
}

}  // namespace
}  // namespace qto::embedded
