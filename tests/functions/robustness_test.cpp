#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <random>

#include "qto/hosts/embedded/functions/registry.hpp"
#include "tests/evaluate/small_book.hpp"

namespace qto::embedded {
namespace {

/// What people and other programs may write as arguments, mostly where it makes no sense.
constexpr const char* arguments[] = {"",
                                     "0",
                                     "1",
                                     "2",
                                     "3",
                                     "-1",
                                     "0.5",
                                     "1E+308",
                                     "-1E+308",
                                     "1E-308",
                                     "4294967296",
                                     "1E+15",
                                     "45352",
                                     "TRUE",
                                     "\"\"",
                                     "\"x\"",
                                     "\"12\"",
                                     "\"1/2/2024\"",
                                     "\"A1:B2\"",
                                     "\"((\"",
                                     "#N/A",
                                     "#DIV/0!",
                                     "A1",
                                     "A1:A9",
                                     "A1:C3",
                                     "B1:B3",
                                     "A2:Z2",
                                     "(A1,B2:C3)",
                                     "Z99",
                                     "{1,2,3}",
                                     "{1;\"a\";#N/A}",
                                     "{1,2;3,4}",
                                     "A1:A9>1",
                                     "SEQUENCE(3)",
                                     "LAMBDA(x,x+1)",
                                     "LAMBDA(x,y,x+y)",
                                     "REPT(\"ab\",9000)",
                                     "NOTHING",
                                     "Sheet1:Sheet1!A1",
                                     "1E+10",
                                     "100000",
                                     "-45352",
                                     "0.999999"};

std::string random_call(const FunctionSpec& spec, std::mt19937& random) {
  const int most = std::min(spec.max_args, spec.min_args + 3);
  const int count = spec.min_args + static_cast<int>(random() % (most - spec.min_args + 1));
  std::string formula = "=" + std::string(spec.name) + "(";
  for (int i = 0; i < count; ++i) {
    if (i > 0) formula += ',';
    formula += arguments[random() % std::size(arguments)];
  }
  return formula + ")";
}

/// QTO_ROUNDS sets how often each function is called, and has every formula printed before it runs.
TEST(FunctionTables, SurviveArgumentsThatMakeNoSense) {
  const char* rounds = std::getenv("QTO_ROUNDS");
  const int calls = rounds ? std::atoi(rounds) : 10;
  SmallBook book("A1=1; A2=2; A3=-3; B1=text; B2=TRUE; B3=#N/A; C1=0; C2=45352; C3=1.5; A9=9");
  std::mt19937 random(20240301);
  for (const functions::Family& family : functions::families())
    for (const FunctionSpec& spec : family.rows)
      for (int i = 0; i < calls; ++i) {
        const std::string formula = random_call(spec, random);
        if (rounds) std::cerr << formula << '\n';
        EXPECT_NO_THROW(book.run(formula)) << formula;
        EXPECT_NO_THROW(book.run_array(formula)) << formula;
      }
}

}  // namespace
}  // namespace qto::embedded
