#include "tests/functions/formula_table.hpp"

namespace qto::embedded {
namespace {

TEST(RegularExpressions, Match) {
  expect_results("A1=Straße 12; A2=a1b22",
                 {{"=REGEXTEST(A1,\"^\\w+ \\d+$\")", "TRUE"},
                  {"=REGEXTEST(\"ÄRGER\",\"^är\",1)", "TRUE"},
                  {"=REGEXTEST(\"ÄRGER\",\"^är\",0)", "FALSE"},
                  {"=REGEXEXTRACT(A2,\"\\d+\")", "1"},
                  {"=TEXTJOIN(\";\",FALSE,REGEXEXTRACT(A2,\"\\d+\",1))", "1;22"},
                  {"=TEXTJOIN(\";\",FALSE,REGEXEXTRACT(A2,\"(\\d)b(\\d)(x)?\",2))", "1;2;"},
                  {"=REGEXEXTRACT(A2,\"x\")", "#N/A"},
                  {"=REGEXREPLACE(\"a😀b\",\".\",\"-\")", "---"},
                  {"=REGEXREPLACE(\"ab\",\"x*\",\"-\")", "-a-b-"},
                  {"=REGEXREPLACE(A2,\"(\\d+)\",\"<$1>\")", "a<1>b<22>"},
                  {"=REGEXTEST(\"a\",\"(\")", "#VALUE!"},
                  {"=REGEXTEST(\"a\",\"\\C\")", "#VALUE!"}});
}

TEST(RegularExpressions, ThatExplodeAreBrokenOff) {
  expect_results("A1=aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaab",
                 {{"=REGEXTEST(A1,\"^(a+)+$\")", "#VALUE!"},
                  {"=REGEXTEST(A1,\"^(a|aa)+$\")", "#VALUE!"},
                  {"=REGEXTEST(REPT(\"a\",32000),\"^(?:a|b)*c\")", "FALSE"},
                  {"=REGEXTEST(A1,REPT(\"(\",300)&REPT(\")\",300))", "#VALUE!"},
                  {"=LEN(REGEXREPLACE(REPT(\"ab\",16000),\"a\",\"c\"))", "32000"}});
}

}  // namespace
}  // namespace qto::embedded
