#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/cli/run_command.hpp"

namespace qto::test {
namespace {

using testing::HasSubstr;
using testing::Not;

struct Case {
  std::vector<std::string> arguments;  // PLAN stands for the example
  int status;
  std::vector<std::string> out;
  std::vector<std::string> err;
};

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += word + " ";
  return text;
}

void expect(const std::vector<Case>& cases) {
  for (const Case& one : cases) {
    SCOPED_TRACE(joined(one.arguments));
    auto arguments = one.arguments;
    for (std::string& word : arguments)
      if (word == "PLAN") word = plan();
    const Outcome outcome = run_qto(arguments);
    EXPECT_EQ(outcome.status, one.status);
    for (const std::string& text : one.out) EXPECT_THAT(outcome.out, HasSubstr(text));
    for (const std::string& text : one.err) EXPECT_THAT(outcome.err, HasSubstr(text));
    EXPECT_EQ(outcome.out.empty(), one.out.empty()) << outcome.out;
    EXPECT_EQ(outcome.err.empty(), one.err.empty()) << outcome.err;
  }
}

TEST(Command, answers_about_the_example) {
  expect({
      {{"tree", "PLAN", "Summary!C7", "--depth", "1"},
       0,
       {"Summary!C7  Net debt.2026  =Debt!C4-C6 → 696\n"
        "├─ Debt!C4  Closing balance.2026  =C2-C3 → 1,200  …\n"
        "└─ Summary!C6  Closing cash.2026  ='Cash flow'!C8 → 504  …\n",
        "3 formulas, 0 other items, 1 level"},
       {}},
      {{"tree", "PLAN", "Summary!C7"}, 0, {"(see above)", "Scenarios!C3"}, {}},
      {{"inputs", "PLAN", "Summary!F2"},
       0,
       {"North!B2", "Widgets.2025", "420", "South!C2", "=B2*(1+Growth*1.5)"},
       {}},
      {{"errors", "PLAN", "Summary!B15"},
       0,
       {"Costs!D8  Service cost per contract.2027  #DIV/0!  =D6/Revenue!D4",
        "1 origin of the error"},
       {}},
      {{"errors", "PLAN", "Summary!C7"}, 0, {"shows no error"}, {}},
      {{"part", "PLAN", "Costs!C2"},
       0,
       {"Costs!C2", "Materials.2026", "=Revenue!C8*0.38+Revenue!C9*0.45", "written in the formula",
        "2318.6691", "2,319"},
       {}},
      {{"part", "PLAN", "Assumptions!B7"}, 0, {"TaxRate", "25.0%"}, {}},
      {{"links", "PLAN"}, 0, {"links to no other book"}, {}},
      {{"--version"}, 0, {"qto 11.", "\nbuilt with expat "}, {}},
      {{"--help"}, 0, {"Exit status", "tree", "inputs", "'My sheet'!B7"}, {}},
      {{"help"}, 0, {"Exit status", "tree", "inputs"}, {}},
      {{"help", "inputs"}, 0, {"--sumif", "qto inputs"}, {}},
      {{"inputs", "--help"}, 0, {"--sumif", "--max-items", "--password"}, {}},
  });
}

TEST(Command, takes_every_way_to_write_a_start) {
  expect({
      {{"inputs", "PLAN", "'Cash flow'!C8"}, 0, {"Inputs of 'Cash flow'!C8"}, {}},
      {{"inputs", "PLAN", "Cash flow!c8"}, 0, {"Inputs of 'Cash flow'!C8"}, {}},
      {{"inputs", "PLAN", "C7"}, 0, {"Inputs of Summary!C7"}, {}},
      {{"inputs", "PLAN", "$C$7"}, 0, {"Inputs of Summary!C7"}, {}},
      {{"inputs", "PLAN", "='Cash flow'!$C$8"}, 0, {"Inputs of 'Cash flow'!C8"}, {}},
      {{"inputs", "PLAN", " = InterestRate"}, 0, {"Inputs of Assumptions!B9"}, {}},
      {{"inputs", "PLAN", "interestrate"}, 0, {"Inputs of Assumptions!B9"}, {}},
      {{"inputs", "PLAN", "Debt!InterestRate"}, 0, {"Inputs of Assumptions!B9"}, {}},
      {{"part", "PLAN", "Costs!WageRise"}, 0, {"=Assumptions!$B$6"}, {}},
      {{"part", "PLAN", "WageRise"}, 0, {"=Assumptions!$B$6"}, {}},
      {{"part", "PLAN", "Ratings"}, 0, {"=Scenarios!$A$7:$B$11"}, {}},
      {{"part", "PLAN", "Scenarios!A7:C11"}, 0, {"5 rows, 3 columns, 5 of the cells empty"}, {}},
  });
}

TEST(Command, refuses_what_is_no_start) {
  expect({
      {{"tree", "PLAN", "Summry!C7"}, 1, {}, {"no sheet 'Summry'", "Did you mean Summary?"}},
      {{"tree", "PLAN", "Zzzzzzzzz!C7"}, 1, {}, {"The sheets are: Summary, Assumptions"}},
      {{"tree", "PLAN", "Grwth"}, 1, {}, {"neither a cell address nor a name", "mean Growth?"}},
      {{"tree", "PLAN", "Summary!XFE1"}, 1, {}, {"neither a cell address nor a name"}},
      {{"tree", "PLAN", "Summary!A1048577"}, 1, {}, {"neither a cell address nor a name"}},
      {{"tree", "PLAN", "Summary!"}, 1, {}, {"nothing follows the '!'"}},
      {{"tree", "PLAN", "!B2"}, 1, {}, {"no sheet stands before the '!'"}},
      {{"tree", "PLAN", ""}, 1, {}, {"it is empty"}},
      {{"tree", "PLAN", "'Cash flow!B2"}, 1, {}, {"apostrophe is not closed"}},
      {{"tree", "PLAN", "Summary(Chart 1)!Sales"}, 1, {}, {"has no chart 'Chart 1'"}},
      {{"tree", "PLAN", "Assumptions!A1:B3"}, 1, {}, {"A1:B3 holds no formula"}},
      {{"tree", "PLAN", "Ratings"}, 1, {}, {"Scenarios!$A$7:$B$11 holds no formula"}},
      {{"tree", "PLAN", "WidgetPrice"}, 1, {}, {"relative name"}},
      {{"part", "PLAN", "A:XFD"}, 1, {}, {"17,179,869,184 cells; at most"}},
      {{"tree", "PLAN", "Assumptions!B3"}, 2, {}, {"holds the constant 2: There is no formula"}},
      {{"errors", "PLAN", "Assumptions!Z9"}, 2, {}, {"Assumptions!Z9 is empty"}},
      {{"inputs", "PLAN", "TaxRate"}, 2, {}, {"Assumptions!B7 holds the constant 25.0%"}},
  });
}

TEST(Command, refuses_wrong_usage) {
  expect({
      {{}, 1, {}, {"subcommand is required", "qto --help"}},
      {{"tre", "PLAN", "A1"}, 1, {}, {"no command 'tre'", "Did you mean tree?"}},
      {{"tree", "PLAN"}, 1, {}, {"START is required", "qto tree --help"}},
      {{"links"}, 1, {}, {"BOOK is required"}},
      {{"part", "PLAN", "A1", "B1"}, 1, {}, {"one word too many: 'B1'"}},
      {{"tree", "PLAN", "C7", "--starts", "/no/such/file"},
       1,
       {},
       {"/no/such/file: cannot be read"}},
      {{"tree", "PLAN", "--starts", "-"}, 1, {}, {"holds no START"}},
      {{"inputs", "PLAN", "A1", "--depth", "2"}, 1, {}, {"--depth"}},
      {{"help", "tre"}, 1, {}, {"no command 'tre'", "Did you mean tree?"}},
      {{"tree", "PLAN", "A1", "--dept", "2"}, 1, {}, {"no option '--dept'. Did you mean --depth?"}},
      {{"inputs", "PLAN", "A1", "--jsn"}, 1, {}, {"Did you mean --json?"}},
      {{"--vrsion"}, 1, {}, {"Did you mean --version?"}},
      {{"tree", "PLAN", "A1", "--depth", "0"}, 1, {}, {"'0' is no number from 1"}},
      {{"tree", "PLAN", "A1", "--depth", "99999999999"}, 1, {}, {"is no number from 1"}},
      {{"tree", "PLAN", "A1", "--max-items", "-5"}, 1, {}, {"'-5' is no number from 1"}},
      {{"tree", "PLAN", "A1", "--drill", "some"}, 1, {}, {"'some' is none of normal|all|minimal"}},
      {{"tree", "PLAN", "A1", "--index", "condition"}, 1, {}, {"none of all|used"}},
      {{"tree", "PLAN", "A1", "--match", "used"}, 1, {}, {"none of all|condition"}},
      {{"tree", "PLAN", "A1", "--offset", "all"}, 1, {}, {"none of real|apparent|both"}},
      {{"tree", "PLAN", "A1", "--hide", "blanks,ones"}, 1, {}, {"'ones' is none of blanks"}},
      {{"tree", "PLAN", "A1", "--open", "maybe"}, 1, {}, {"none of ask|always|never"}},
  });
}

TEST(Command, answers_about_several_starts) {
  const std::string all = run_qto({"inputs", plan(), "Summary!C6:C7", "Costs!B5"}).out;
  std::string single;
  for (const char* start : {"Summary!C6", "Summary!C7", "Costs!B5"})
    single += (single.empty() ? "" : "\n") + run_qto({"inputs", plan(), start}).out;
  EXPECT_EQ(all, single);
  const Outcome typed =
      run_qto({"inputs", plan(), "C6:C7", "--starts", "-"}, "\n  =Costs!$B$5  \n");
  EXPECT_EQ(typed.out, single);
  EXPECT_EQ(typed.status, 0) << typed.err;
}

TEST(Command, answers_about_the_other_starts_where_one_is_refused) {
  const Outcome some = run_qto({"inputs", plan(), "Assumptions!B3", "Summary!C7"});
  EXPECT_EQ(some.status, 3);
  EXPECT_THAT(some.out, HasSubstr("Inputs of Summary!C7"));
  EXPECT_THAT(some.err, HasSubstr("holds the constant 2: There is no formula"));
  EXPECT_EQ(run_qto({"inputs", plan(), "Assumptions!B3", "Assumptions!B7"}).status, 2);
}

TEST(Command, is_silent_where_nobody_reads_its_answer) {
  const std::string errors = testing::TempDir() + "qto_unread_answer";
  const std::string line =
      "(trap '' PIPE; '" QTO_COMMAND "' tree '" + plan() + "' 'Summary!C7' 2>'" + errors + "') | :";
  EXPECT_EQ(std::system(line.c_str()), 0);
  std::stringstream told;
  told << std::ifstream(errors).rdbuf();
  EXPECT_EQ(told.str(), "");
  std::filesystem::remove(errors);
}

TEST(Command, passes_the_choices_on_to_the_drill) {
  const auto listed = [](std::vector<std::string> options) {
    std::vector<std::string> arguments{"tree", plan(), "Costs!B5", "--depth", "2"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return run_qto(arguments).out;
  };
  const std::string all = listed({});
  EXPECT_THAT(all, HasSubstr("Growth"));
  EXPECT_THAT(all, HasSubstr("Revenue!B11"));
  // A single choice counts after --drill, wherever it stands.
  for (const auto& options :
       std::vector<std::vector<std::string>>{{"--if", "used"},
                                             {"--drill", "minimal", "--if", "used"},
                                             {"--if", "used", "--drill", "normal"}})
    EXPECT_THAT(listed(options), Not(HasSubstr("Growth  "))) << joined(options);
  EXPECT_THAT(run_qto({"inputs", plan(), "Summary!C7", "--hide", "dates"}).out,
              Not(HasSubstr("1/1/2025")));
  EXPECT_THAT(run_qto({"inputs", plan(), "Summary!C7", "--ignore-zero-one"}).out,
              Not(HasSubstr("=B2*(1+Growth)")));
  const Outcome few = run_qto({"inputs", plan(), "Summary!C7", "--max-items", "5"});
  EXPECT_EQ(few.status, 3);
  EXPECT_THAT(few.out, HasSubstr("Stopped after 5 items (--max-items)"));
}

}  // namespace
}  // namespace qto::test
