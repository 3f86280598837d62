#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/cli/run_command.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string broken_book() {
  BookFile book;
  book.cells(
      "<row r=\"1\"><c r=\"A1\"><f>B1+C1</f><v>1</v></c><c r=\"B1\"><f>#REF!+C1</f><v>2</v></c>"
      "<c r=\"C1\"><v>3</v></c></row>");
  return book.bytes();
}

std::string contents(const std::string& file) {
  std::stringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

TEST(Trace, is_written_to_a_file_before_or_behind_the_command) {
  const std::string file = testing::TempDir() + "qto_command_trace.txt";
  for (const auto& arguments : {std::vector<std::string>{"inputs", plan(), "C7", "--trace", file},
                                {"--trace", file, "inputs", plan(), "C7"}}) {
    const Outcome outcome = run_qto(arguments);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, run_qto({"inputs", plan(), "C7"}).out);
    const std::string trace = contents(file);
    EXPECT_TRUE(trace.starts_with("Tracing qto\nSession started 2")) << trace.substr(0, 80);
    EXPECT_THAT(trace, HasSubstr("\nDrillDown.FindInputs\n\tDrillDown.set_up\n"));
  }
  std::filesystem::remove(file);
}

TEST(Trace, replaces_no_file_that_is_not_a_trace) {
  const TemporaryFile book("traced.xlsx", broken_book());
  const std::string link = testing::TempDir() + "qto_link_to_book";
  std::filesystem::remove(link);
  std::filesystem::create_symlink(book.path(), link);
  const std::string before = contents(book.path());
  for (const auto& arguments :
       {std::vector<std::string>{"inputs", book.path(), "A1", "--trace", book.path()},
        {"inputs", book.path(), "A1", "--trace", link},
        {"part", "--trace", book.path(), "A1"}}) {
    const Outcome outcome = run_qto(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("something else than a trace")) << outcome.out;
    EXPECT_EQ(contents(book.path()), before);
  }
  std::filesystem::remove(link);
}

TEST(Trace, that_cannot_be_written_is_refused) {
  Outcome outcome = run_qto({"inputs", plan(), "C7", "--trace", "/no/such/folder/trace.txt"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("/no/such/folder/trace.txt"));
  outcome = run_qto({"inputs", plan(), "C7", "--trace-viewer", "/no/such/socket"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("is the viewer running?"));
}

TEST(Reports, name_the_formula_cell_and_the_call_that_failed) {
  const TemporaryFile file("broken.xlsx", broken_book());
  Outcome outcome = run_qto({"inputs", file.path(), "A1", "--reading", "written"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, HasSubstr("[broken.xlsx]Sheet1!B1: "));
  EXPECT_THAT(outcome.err, HasSubstr("in Parser.sheets_for_reference, host call "
                                     "Workbook.Worksheets"));
  outcome = run_qto({"inputs", file.path(), "A1", "--json", "--reading", "written"});
  const auto report = nlohmann::json::parse(outcome.out).at("reports").at(0);
  EXPECT_EQ(report.at("number"), 9);
  EXPECT_EQ(report.at("formula_cell"), "[broken.xlsx]Sheet1!B1");
  EXPECT_EQ(report.at("host_call"), "Workbook.Worksheets");
  EXPECT_GT(report.at("line"), 0);
}

TEST(Reports, can_be_asked_about) {
  const TemporaryFile file("broken.xlsx", broken_book());
  const std::vector<std::string> asking{"inputs", file.path(), "A1",     "--reports",
                                        "ask",    "--reading", "written"};
  const struct {
    const char* typed;
    int status;
    int dialogs;
  } rows[] = {{"d\n", 3, 1}, {"c\n", 3, 1}, {"r\nr\nr\nr\n", 3, 4},
              {"a\n", 3, 1}, {"", 3, 1},    {"q\n", 3, 1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.typed);
    const Outcome outcome = run_qto(asking, row.typed);
    EXPECT_EQ(outcome.status, row.status);
    int dialogs = 0;
    for (std::size_t at = 0; (at = outcome.err.find("Error Report\n", at)) != std::string::npos;
         ++at)
      ++dialogs;
    EXPECT_EQ(dialogs, row.dialogs);
    EXPECT_THAT(outcome.err, HasSubstr(" Formula cell: [broken.xlsx]Sheet1!B1\n"));
    EXPECT_EQ(outcome.out.find("C1") != std::string::npos, row.typed[0] != 'q') << outcome.out;
  }
  EXPECT_THAT(run_qto({"inputs", file.path(), "A1", "--reading", "written"}, "").err,
              Not(HasSubstr("Error Report\n")));
}

}  // namespace
}  // namespace qto::test
