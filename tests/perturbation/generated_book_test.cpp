#include "tests/conformance/perturbation/generated_book.hpp"

#include <gmock/gmock.h>

#include "tests/conformance/perturbation/shrink.hpp"

namespace qto::embedded::conformance {
namespace {

TEST(GeneratedBook, IsTheSameForTheSameSeed) {
  EXPECT_EQ(GeneratedBook(7).script(), GeneratedBook(7).script());
  EXPECT_NE(GeneratedBook(7).script(), GeneratedBook(8).script());
}

TEST(GeneratedBook, EveryConstructOccurs) {
  std::string all;
  for (std::uint64_t seed = 1; seed <= 150; ++seed) {
    const GeneratedBook book(seed);
    for (const auto& cell : book.formulas()) all += cell.formula.text() + "\n";
  }
  for (const char* construct :
       {":INDEX(",   ":OFFSET(",  ":CHOOSE(", "First_:Last_", "K1#",       "[@Amount]",
        "Sales[#A",  "'#'[2']",   "LET(",     "LAMBDA(",      "INDIRECT(", "FALSE)",
        "#REF!",     "#DIV/0!",   "what?",    "\\back",       "!Rate",     "[other book.xlsx]",
        "'it''s'!",  "!A:XFD",    "!3:3",     "$B:$B",        "IFS(",      "SWITCH(",
        "CHOOSE({1", "IFERROR(",  "IFNA(",    "VLOOKUP(",     "HLOOKUP(",  "LOOKUP(2,1/",
        "XLOOKUP(",  "XMATCH(",   "SUMIFS(",  "COUNTIFS(",    "MAXIFS(",   "AVERAGEIFS(",
        "FILTER(",   "SUBTOTAL(", "MAP(",     "REDUCE(",      "BYROW(",    ":Data'!"})
    EXPECT_NE(all.find(construct), std::string::npos) << construct;
}

TEST(GeneratedBook, AMissIsToldWithTheSimplestFormulaThatHasIt) {
  PerturbationPlan plan;
  plan.options[0] = make_ref<DrillOptions>();  // INDIRECT is followed to its arguments only
  for (plan.seed = 1; plan.seed < 40; ++plan.seed) {
    GeneratedBook book(plan.seed);
    for (const Miss& miss : perturb(book.workbook(), plan).shown) {
      if (miss.formula.find("INDIRECT(") == std::string::npos || miss.following != Following::all)
        continue;
      EXPECT_THAT(shrunk(book, miss, plan).formula,
                  testing::MatchesRegex("\\{?=@?INDIRECT\\(.*|=[A-Z]+\\(@?INDIRECT\\(.*"));
      return;
    }
  }
  FAIL() << "no formula missed the target of an INDIRECT";
}

}  // namespace
}  // namespace qto::embedded::conformance
