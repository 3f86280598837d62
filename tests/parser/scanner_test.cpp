#include "qto/parser/scanner.hpp"

#include <gtest/gtest.h>

#include <string>

#include "qto/parser/arguments.hpp"
#include "tests/support/text_book.hpp"

namespace qto {
namespace {

/// Token texts separated by "·"; text literals carry an "s" before them.
std::string cut(std::string_view formula) {
  TokenTable table;
  table.start(formula);
  scan_formula(table);
  std::string out;
  for (const Token& token : table.tokens) {
    if (!out.empty()) out += "·";
    if (token.type == TokenType::string) out += "s";
    out += token.text;
  }
  return out;
}

TEST(Scanner, CutsAtDelimitersAndNowhereElse) {
  const struct {
    const char* formula;
    const char* tokens;
  } rows[] = {
      {"", ""},
      {"=", ""},
      {"xA1", "A1"},  // the first character is never looked at
      {"=A1+B1", "A1·+·B1"},
      {"=A1 + B1", "A1 ·+· B1"},
      {"=$A$1:$B$9 C:C", "$A$1:$B$9 C:C"},
      {"=3:5", "3:5"},
      {"=a[]()+-*/^&!=,%<>?@\\{}|~b", "a·[·]·(·)·+·-·*·/·^·&·!·=·,·%·<·>·?·@·\\·{·}·|·~·b"},
      {"=A1;B1", "A1;B1"},
      {"={1;2,3}", "{·1·;·2·,·3·}"},
      {"=1E+30", "1E·+·30"},
      {"=50%", "50·%"},
      {"=-A1", "-·A1"},
      {"=#DIV/0!", "#DIV·/·0·!"},
      {"=\"a,b\"&A1", "s\"a,b\"·&·A1"},
      {"=\"say \"\"hi\"\"\"", "s\"say \"·s\"hi\"·s\"\""},
      {"=x\"y\"", "s\"y\""},  // what was pending before a literal is dropped
      {"=\"it's\"&'My Sheet'!A1", "s\"it's\"·&·'My Sheet'·!·A1"},
      {"='D:\\A,B\\[C d.xls]E(1)'!A1", "'D:\\A,B\\[C d.xls]E(1)'·!·A1"},
      {"='Bob''s, x'!A1", "'Bob''s, x'·!·A1"},
      {"=\"open", "\"open"},
      {"='open,(", "'open,("},
      {"=A1:INDEX(B:B,2)", "A1·:·INDEX·(·B:B·,·2·)"},
      {"=OFFSET(A1,1,0):B9", "OFFSET·(·A1·,·1·,·0·)·:·B9"},
  };
  for (const auto& row : rows) EXPECT_EQ(cut(row.formula), row.tokens) << row.formula;
}

TEST(QuotedName, FallsIntoFolderBookAndSheet) {
  const struct {
    const char* text;
    const char* columns;
  } rows[] = {
      {"'My Sheet'", "My Sheet \"WORKSHEET\""},
      {"'Bob''s'", "Bob''s \"WORKSHEET\""},
      {"'Jan:Mar'", "Jan:Mar \"WORKSHEET\""},
      {"'[B 1.xls]S 1'",
       "[ \"END TOKEN\"; B 1.xls \"WORKBOOK\"; ] \"END TOKEN\"; S 1 \"WORKSHEET\""},
      {"'[B.xls]'", "[ \"END TOKEN\"; B.xls \"WORKBOOK\"; ] \"END TOKEN\""},
      {"'D:\\Data\\[B 1.xls]S 1'",
       "D:\\Data\\ \"PATH NAME\"; [ \"END TOKEN\"; B 1.xls \"WORKBOOK\"; ] \"END TOKEN\"; S 1 "
       "\"WORKSHEET\""},
      {"'D:\\Data\\B.xls'", "D:\\Data \"PATH NAME\"; \\ \"END TOKEN\"; B.xls \"WORKBOOK\""},
      {"'http://h/x/B.xls'", "http://h/x \"PATH NAME\"; / \"END TOKEN\"; B.xls \"WORKBOOK\""},
      {"'", " \"WORKSHEET\""},
      {"'[x'", "[x \"WORKSHEET\""},
      {"']a['", "]a[ \"WORKSHEET\""},
  };
  for (const auto& row : rows) {
    std::string columns;
    for (const Token& token : split_quoted_path_name(row.text)) {
      if (!columns.empty()) columns += "; ";
      columns.append(token.text).append(" \"").append(token_type_name(token)).append("\"");
    }
    EXPECT_EQ(columns, row.columns) << row.text;
  }
}

TEST(FunctionName, OfTheNineIsItsOwnType) {
  for (const char* name : {"INDIRECT", "HLOOKUP", "VLOOKUP", "LOOKUP", "MATCH", "INDEX", "IF",
                           "SUMIF", "OFFSET", "if", "Match"}) {
    const Token token{name, check_for_dodgy_functions(name)};
    EXPECT_EQ(token_type_name(token), name);
  }
  for (const char* name : {"SUM", "IFS", "SUMIFS", "XMATCH", "", "_xlfn.IF"})
    EXPECT_EQ(check_for_dodgy_functions(name), TokenType::function) << name;
}

// Arguments

struct Call {
  explicit Call(std::string_view formula) {
    table.start(formula);
    scan_formula(table);
    for (std::size_t i = 1; i <= table.count(); ++i) {
      Token& token = table.at(i);
      if (token.type != TokenType::none) continue;
      const bool qualifies = i < table.count() && table.at(i + 1).text == "!";
      token.type = i > 1 && table.at(i - 1).text == "[" ? TokenType::workbook
                   : qualifies                          ? TokenType::worksheet
                                                        : TokenType::range;
    }
  }
  TokenTable table;
};

std::string arguments(std::string_view formula) {
  Call call(formula);
  std::size_t position = 3;
  const test::Reports reports;
  try {
    std::string out;
    for (const Tokens argument : get_args(call.table.tokens, position))
      out += "<" + args_array_to_string(argument) + ">";
    return out + std::to_string(call.table.count() - position);
  } catch (const std::exception&) {
    return reports.text();
  }
}

TEST(Arguments, SplitAtCommasOutsideParentheses) {
  const struct {
    const char* formula;
    const char* split;  // the arguments, and the number of tokens behind the call
  } rows[] = {
      {"=F(A1)", "<A1>0"},
      {"=F()+1", "<>2"},
      {"=F(A1,,B1)", "<A1><><B1>0"},
      {"=F(G(A1,B1),C1)*2", "<G(A1,B1)><C1>2"},
      {"=F({1,2},A1)", "<{1><2}><A1>0"},
      {"=F(A1, Data!B2,\n Other!C3)", "<A1>< 'Data'!B2><\n 'Other'!C3>0"},
      {"=F(a,b,c,d,e)", "<a><b><c><d><e>0"},
      {"=F(a,b,c,d,e,f)", " !-2147221500"},
      {"=F(A1", " !9"},
      {"=F(A1,", " !9"},
  };
  for (const auto& row : rows) EXPECT_EQ(arguments(row.formula), row.split) << row.formula;
}

TEST(Arguments, AreWrittenWithTheirQuotesAgain) {
  const struct {
    const char* formula;
    const char* text;
  } rows[] = {{"=A1", "A1"},
              {"=Sheet1!A1", "'Sheet1'!A1"},
              {"=Data!B2:B9*Data!C1+2", "'Data'!B2:B9*'Data'!C1+2"},
              {"=[B.xls]S!A1", "'[B.xls]S'!A1"},
              {"=\"x\"&A1", "\"x\"&A1"}};
  for (const auto& row : rows) {
    const Call call(row.formula);
    EXPECT_EQ(args_array_to_string(call.table.tokens), row.text);
  }
  for (const std::string_view quoted : {"'[Book 1.xls]Sheet 1'", "'D:\\Data\\[Book 1.xls]Sheet 1'",
                                        "'D:\\Data\\Book2.xls'", "'/home/x/Book2.xlsx'"}) {
    auto columns = split_quoted_path_name(quoted);
    columns.push_back({"!", TokenType::end_token});
    columns.push_back({"A1", TokenType::range});
    EXPECT_EQ(args_array_to_string(columns), std::string(quoted) + "!A1");
  }
}

}  // namespace
}  // namespace qto
