#include <gtest/gtest.h>

#include "qto/formula/parser.hpp"
#include "qto/formula/tree_dump.hpp"

namespace qto::embedded {
namespace {

constexpr CellPos d5{5, 4};

std::string dump(std::string_view text) {
  const formula::ParsedFormula parsed = formula::parse_formula(text, d5);
  return parsed.why_broken.empty() ? formula::dump_tree(parsed.tree, d5)
                                   : "broken: " + parsed.why_broken;
}

struct Row {
  std::string_view text;
  std::string_view tree;
};

void check(std::initializer_list<Row> rows) {
  for (const Row& row : rows) EXPECT_EQ(dump(row.text), row.tree) << row.text;
}

TEST(ParseTest, Operators) {
  check({
      {"1+2*3", "(+ 1 (* 2 3))"},
      {"1-2-3", "(- (- 1 2) 3)"},
      {"2^3^2", "(^ (^ 2 3) 2)"},
      {"-2^2", "(^ (- 2) 2)"},
      {"2^-1", "(^ 2 (- 1))"},
      {"-A1%", "(% (- A1))"},
      {"50%%", "(% (% 50))"},
      {"--A1", "(- (- A1))"},
      {"A1&\"a\"\"b\"&1", "(& (& A1 \"a\"b\") 1)"},
      {"1+2&3", "(& (+ 1 2) 3)"},
      {"A1<>B1=TRUE", "(= (<> A1 B1) TRUE)"},
      {"A1>=1", "(>= A1 1)"},
      {"(1+2)*3", "(* (+ 1 2) 3)"},
      {" 1 +\r\n\t2 ", "(+ 1 2)"},
      {"=A1", "broken: unexpected \"=\" at character 1"},
  });
}

TEST(ParseTest, CallsOfFunctionValues) {
  check({
      {"LAMBDA(x,x+1)(3)", "(invoke (LAMBDA x (+ x 1)) 3)"},
      {"f(1)(2,)()", "(invoke (invoke (F 1) 2 _))"},
      {"LAMBDA(x,x) (A1)", "(intersect (LAMBDA x x) A1)"},
  });
}

TEST(ParseTest, Constants) {
  check({
      {".5", "0.5"},
      {"1E+10", "1e+10"},
      {"1.5e-3", "0.0015"},
      {"true", "TRUE"},
      {"FALSE()", "FALSE"},
      {"#DIV/0!", "#DIV/0!"},
      {"#N/A", "#N/A"},
      {"#GETTING_DATA", "#GETTING_DATA"},
      {"{1,-2;\"a\",TRUE}", "{1,-2;\"a\",TRUE}"},
      {"{ #N/A ; 1.5 }", "{#N/A;1.5}"},
      {"{1,2;3}", "broken: the rows of an array constant differ in length"},
      {"{A1}", "broken: an array constant holds something that is no constant"},
      {"{}", "broken: an array constant holds something that is no constant"},
  });
}

TEST(ParseTest, Areas) {
  check({
      {"$A$1", "$A$1"},
      {"a1:b2", "A1:B2"},
      {"B2:A1", "A1:B2"},
      {"A:A", "A:A"},
      {"$A:$C", "$A:$C"},
      {"3:$5", "3:$5"},
      {"XFD1048576", "XFD1048576"},
      {"XFE1", "XFE1"},
      {"A1048577", "A1048577"},
      {"A1:INDEX(B:B,3)", "(: A1 (INDEX B:B 3))"},
      {"OFFSET(A1,1,1):B3", "(: (OFFSET A1 1 1) B3)"},
      {"A1:B2:C3", "(: A1:B2 C3)"},
      {"A1 : B2", "(: A1 B2)"},
      {"A1:C3 B2:D4", "(intersect A1:C3 B2:D4)"},
      {"(A1,B2)", "(union A1 B2)"},
      {"SUM((A1,B2:C3),D1)", "(SUM (union A1 B2:C3) D1)"},
      {"Sheet1!$A:$A,Sheet1!$1:$1", "(union Sheet1!$A:$A Sheet1!$1:$1)"},
      {"SUM(A1:B2 B2,(C1 C2,D1))", "(SUM (intersect A1:B2 B2) (union (intersect C1 C2) D1))"},
      {"A1#", "(# A1)"},
      {"SUM(Sheet2!A1#:B9)", "(SUM (: (# Sheet2!A1) B9))"},
      {"@A1:A9", "(@ A1:A9)"},
      {"_xlfn.SINGLE(A1:A9)+1", "(+ (@ A1:A9) 1)"},
      {"_xlfn.ANCHORARRAY(A1)", "(# A1)"},
      {"#REF!", "#REF!"},
      {"Sheet1!#REF!", "#REF!"},
      {"#REF!A1", "#REF!A1"},
      {"#REF!+1", "(+ #REF! 1)"},
  });
}

TEST(ParseTest, Qualifiers) {
  check({
      {"Sheet1!A1", "Sheet1!A1"},
      {"'My Sheet'!A1:B2", "My Sheet!A1:B2"},
      {"'It''s'!A1", "It's!A1"},
      {"Sheet1!A1:Sheet1!B2", "(: Sheet1!A1 Sheet1!B2)"},
      {"Sheet1:Sheet3!B2", "Sheet1:Sheet3!B2"},
      {"Jan:Mar!B2", "Jan:Mar!B2"},
      {"'Sheet 1:Sheet 3'!B2", "Sheet 1:Sheet 3!B2"},
      {"A1:Sheet2!B3", "(: A1 Sheet2!B3)"},
      {"[1]Sheet1!A1", "[1]Sheet1!A1"},
      {"'[2]My Sheet'!A1", "[2]My Sheet!A1"},
      {"[1]A:C!B2", "[1]A:C!B2"},
      {"[1]!Rate", "[1]!Rate"},
      {"[0]!Rate", "Rate"},
      {"[1]#REF!A1", "[1]#REF!A1"},
      {"[Book2.xlsx]Sheet1!A1", "[Book2.xlsx]Sheet1!A1"},
      {"'C:\\dir\\[Book2.xlsx]Sheet 1'!A1", "[Book2.xlsx]Sheet 1!A1"},
      {"Book2.xlsx!Rate", "[Book2.xlsx]!Rate"},
      {"'C:\\dir\\Book 2.xlsx'!Rate", "[Book 2.xlsx]!Rate"},
      {"Sheet1!Rate", "Sheet1!Rate"},
      {"2007!A1", "2007!A1"},
      {"Q1!A1", "Q1!A1"},
      {"!$A$1", "$A$1"},
      {"[2]!'item name'", "[2]!item name"},
      {"App|Doc!Item", "[App|Doc]!Item"},
      {"Größe!A1", "Größe!A1"},
      {"Sheet1! A1", "broken: unexpected \"A1\" at character 9"},
  });
}

TEST(ParseTest, NamesAndCalls) {
  check({
      {"Größe_2.b\\c?", "Größe_2.b\\c?"},
      {"\\x", "\\x"},
      {"IF(A1,,2)", "(IF A1 _ 2)"},
      {"IF(A1,)", "(IF A1 _)"},
      {"F(,)", "(F _ _)"},
      {"NOW()", "(NOW)"},
      {"sum(1,2)", "(SUM 1 2)"},
      {"LOG10(2)", "(LOG10 2)"},
      {"_xlfn.XLOOKUP(A1,B:B,C:C)", "(XLOOKUP A1 B:B C:C)"},
      {"_xlfn._xlws.FILTER(A1:A3,B1:B3)", "(FILTER A1:A3 B1:B3)"},
      {"_xlfn.LET(_xlpm.x,1,_xlpm.x+1)", "(LET x 1 (+ x 1))"},
      {"[1]!udf(1)", "([1]!UDF 1)"},
      {"Book.xlam!udf(1)", "([Book.xlam]!UDF 1)"},
      {"MyUdf(A1 B1)", "(MYUDF (intersect A1 B1))"},
  });
}

TEST(ParseTest, StructuredReferences) {
  check({
      {"T[Col]", "T[Col]"},
      {"T[]", "T[]"},
      {"T[#All]", "T[#All;]"},
      {"T[[#Headers],[Col]]", "T[#Headers;Col]"},
      {"T[[#This Row],[A]:[B]]", "T[#This Row;A:B]"},
      {"T[[#Headers],[#Data],[A]]", "T[#Data;#Headers;A]"},
      {"T[ [#Totals] , [A b] ]", "T[#Totals;A b]"},
      {"T[[A]:[B]]", "T[A:B]"},
      {"T[@Col]", "T[#This Row;Col]"},
      {"T[@[Col name]]", "T[#This Row;Col name]"},
      {"[@Col]*[@[B c]]", "(* [#This Row;Col] [#This Row;B c])"},
      {"T[@]", "T[#This Row;]"},
      {"[Col]", "[Col]"},
      {"T['#'[x']]", "T[#[x]]"},
      {"T[[it''s]]", "T[it's]"},
      {"XII.a.Outputs[2007]", "XII.a.Outputs[2007]"},
      {"\\T.1[Two\nlines]", "\\T.1[Two\nlines]"},
      {"SUM(T[A]:T[B])", "(SUM (: T[A] T[B]))"},
      {"T[[A],[B]]", "broken: unexpected \"T[[A],[B]]\" at character 1"},
      {"T[#Nothing]", "broken: unexpected \"T[#Nothing]\" at character 1"},
  });
}

TEST(ParseTest, BrokenTexts) {
  check({
      {"", "broken: the formula ends too early"},
      {"1+", "broken: the formula ends too early"},
      {"SUM(1", "broken: the formula ends too early"},
      {"SUM(1))", "broken: unexpected \")\" at character 7"},
      {"\"abc", "broken: unexpected \"\"abc\" at character 1"},
      {"1 2", "broken: unexpected \"2\" at character 3"},
      {"T[Col", "broken: unexpected \"T[Col\" at character 1"},
      {"A1~B1", "broken: unexpected \"~B1\" at character 3"},
      {"1,\"a\"*", "broken: the formula ends too early"},
  });
}

std::string repeated(std::string_view part, int times) {
  std::string out;
  for (int i = 0; i < times; ++i) out += part;
  return out;
}

TEST(ParseTest, DeepNestingIsRefusedWithAReason) {
  const std::string deep = repeated("(", 20'000) + "1" + repeated(")", 20'000);
  EXPECT_EQ(dump(deep), "broken: nested deeper than 256 levels");
  EXPECT_EQ(dump(repeated("(", 256) + "1" + repeated(")", 256)), "1");
  EXPECT_EQ(dump(repeated("ABS(", 257) + "1" + repeated(")", 257)),
            "broken: nested deeper than 256 levels");
  EXPECT_EQ(dump(repeated("-", 50'000) + "1"), "broken: nested deeper than 256 levels");
  EXPECT_EQ(dump("1" + repeated("%", 50'000)), "broken: nested deeper than 256 levels");
  EXPECT_EQ(dump(repeated("[", 50'000)).substr(0, 8), "broken: ");
}

TEST(ParseTest, LongChainsArePlainLoops) {
  const formula::ParsedFormula chain = formula::parse_formula("1" + repeated("+1", 100'000), d5);
  ASSERT_EQ(chain.why_broken, "");
  EXPECT_EQ(chain.tree.nodes.size(), 200'001u);
  EXPECT_EQ(formula::parse_formula("A1" + repeated(":A1", 50'000), d5).why_broken, "");
  EXPECT_EQ(formula::parse_formula("A1" + repeated(" A1", 50'000), d5).why_broken, "");
  EXPECT_EQ(formula::parse_formula("(A1" + repeated(",A1", 50'000) + ")", d5).why_broken, "");
  EXPECT_EQ(formula::parse_formula("SUM(1" + repeated(",1", 70'000) + ")", d5).why_broken,
            "too many arguments");
}

// Every text of a few characters, most of them nonsense, ends in a tree or in a reason.
TEST(ParseTest, ShortTextsNeverCrash) {
  constexpr std::string_view parts[] = {"A1", "$", "'", "[", "]", "!", "#", ":", "@", "(",
                                        ")",  "{", "}", ",", " ", "-", "%", "T", "1", "\""};
  for (const auto a : parts)
    for (const auto b : parts)
      for (const auto c : parts)
        for (const auto d : parts) {
          std::string text;
          text.append(a).append(b).append(c).append(d);
          const formula::ParsedFormula parsed = formula::parse_formula(text, d5);
          EXPECT_EQ(parsed.tree.root == formula::no_node, !parsed.why_broken.empty()) << text;
        }
}

}  // namespace
}  // namespace qto::embedded
