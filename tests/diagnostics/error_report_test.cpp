#include "qto/diagnostics/error_report.hpp"

#include <gmock/gmock.h>

#include <cerrno>
#include <stdexcept>

#include "qto/automation/error.hpp"
#include "qto/diagnostics/mail_report.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/diagnostics/subject.hpp"
#include "tests/support/diagnostics_fixtures.hpp"

namespace qto::diagnostics {
namespace {

using test::ScriptedDialog;
using testing::HasSubstr;

std::string followed;

void follow(std::string_view address) { followed = address; }
void fail_to_follow(std::string_view) { throw NumberedFailure(1004, "no mail program"); }

class Report : public testing::Test {
 protected:
  Report() { followed.clear(); }
  ~Report() override {
    set_support({});
    set_follow_hyperlink(nullptr);
  }
  /// One statement that fails, in a procedure; true when the rest of the procedure would run.
  static bool fail(const std::string& description = "no such range", int line = 42) {
    Procedure proc("DrillDown", "InputCells[Get]");
    return proc.step([&] { throw NumberedFailure(1004, description, "Workbook.Worksheets"); },
                     line);
  }
  static constexpr const char* text =
      "Error 1004\r\n Description: no such range\r\n Project: Quarto\r\n Module: DrillDown\r\n"
      " Line: 42\r\n Version: 11.0.1\r\n";
};

TEST_F(Report, IsSavedComposedAndShown) {
  const ScriptedDialog dialog(Outcome::leave);
  errno = 2;
  EXPECT_FALSE(fail());
  EXPECT_EQ(saved_error().number, 1004);
  EXPECT_EQ(saved_error().description, "no such range");
  EXPECT_EQ(saved_error().source, "Workbook.Worksheets");
  EXPECT_EQ(saved_error().last_system_error, 2);
  EXPECT_EQ(saved_report().member, "InputCells[Get]");
  EXPECT_EQ(saved_report().text(), text);
  ASSERT_EQ(dialog.shown().size(), 1u);
  const DialogContent& shown = dialog.shown()[0];
  EXPECT_EQ(shown.caption, "Error Report");
  EXPECT_EQ(shown.message,
            "An unexpected error has occured in this application. \r\n"
            "Please help us by reporting this error.");
  EXPECT_THAT(shown.texts,
              testing::ElementsAre(
                  "We are very sorry for this inconvenience.",
                  "It would be a great help to us in fixing this error if you could report it by "
                  "e-mail.",
                  "Thank you for your time."));
  EXPECT_EQ(shown.report, text);
  EXPECT_EQ(shown.further_lines,
            " Procedure: DrillDown.InputCells[Get]\r\n Host call: Workbook.Worksheets\r\n");
  EXPECT_FALSE(shown.sent);
  EXPECT_EQ(shown.buttons.back().label, "&Don't report");  // nobody to mail it to
}

TEST_F(Report, NamesTheFormulaCellOfTheInnermostMark) {
  const ScriptedDialog dialog(Outcome::leave);
  const auto name = [](const void* subject) { return *static_cast<const std::string*>(subject); };
  const std::string outer = "[Plan.xlsx]Sheet1!A1", inner = "[Plan.xlsx]Sheet1!B7";
  const Subject outer_mark(&outer, name);
  {
    const Subject inner_mark(&inner, name);
    fail();
  }
  fail();
  EXPECT_EQ(dialog.reports[0].formula_cell, inner);
  EXPECT_EQ(dialog.reports[1].formula_cell, outer);
  EXPECT_EQ(dialog.reports[1].text(), text);  // what is sent names no cell
}

TEST_F(Report, GoesOutByMailAndThanks) {
  set_support({"help@example.com", "Errors & more", "+44 1234"});
  set_follow_hyperlink(follow);
  const ScriptedDialog dialog([](const DialogContent& content) { return content.sent ? 5 : 8; });
  int runs = 0;
  Procedure proc("Parser", "Parse");
  EXPECT_TRUE(proc.step([&] {
    if (++runs == 1) throw std::runtime_error("50% off + a=b");
  }));
  EXPECT_EQ(runs, 2);  // the action chosen with the thanks is the outcome
  ASSERT_EQ(dialog.shown().size(), 2u);
  EXPECT_EQ(dialog.shown()[0].buttons.back().position, 8);
  EXPECT_TRUE(dialog.shown()[1].sent);
  EXPECT_THAT(dialog.shown()[1].texts, testing::ElementsAre("Thank you for reporting this error. ",
                                                            "Please click OK to continue."));
  EXPECT_EQ(dialog.shown()[1].buttons.back().label, "&OK");
  EXPECT_THAT(dialog.told(), testing::ElementsAre("Did the e-mail appear correctly?"));
  EXPECT_TRUE(
      followed.starts_with("mailto:help@example.com?Subject=Errors%20%26%20more&Body="
                           "Error%205%0D%0A%20Description%3A%2050%25%20off%20%2B%20a%3Db"
                           "%0D%0A%20Project%3A%20Quarto%0D%0A"))
      << followed;
}

TEST_F(Report, TellsWhomToCallWhenTheMailDidNotAppear) {
  for (const bool host_fails : {false, true}) {
    set_support({"help@example.com", "", "+44 1234"});
    set_follow_hyperlink(host_fails ? fail_to_follow : follow);
    ScriptedDialog dialog([](const DialogContent& content) { return content.sent ? 7 : 8; });
    dialog.answer_questions(false);
    EXPECT_FALSE(fail());
    ASSERT_FALSE(dialog.told().empty());
    EXPECT_EQ(dialog.told().back(),
              "We apologize that Quarto was unable to create the e-mail. Please call us with "
              "details of the error on +44 1234. One of our technical support staff will be "
              "pleased to help you. Please give them the following information: " +
                  std::string(text));
    EXPECT_EQ(dialog.told().size(), host_fails ? 1u : 2u);  // no question about what failed
    EXPECT_EQ(dialog.reports.size(), host_fails ? 2u : 1u);
    EXPECT_EQ(dialog.shown().size(), 2u);
  }
}

TEST_F(Report, IsShortenedWhereMailProgramsWouldRefuseIt) {
  ErrorReport report;
  report.module = "Parser";
  report.version = "1.2.3";
  for (const char* letter : {"x", "\xC3\xA4", "\xE2\x82\xAC", "%"}) {
    report.description.clear();
    for (int i = 0; i < 3000; ++i) report.description += letter;
    const std::string address = mail_address({"a@b.example", "S", ""}, report);
    EXPECT_LE(address.size(), longest_mail_address);
    EXPECT_GT(address.size(), longest_mail_address - 60);
    EXPECT_THAT(address, HasSubstr("%20...%0D%0A%20Project"));
    EXPECT_TRUE(address.ends_with("%20Version%3A%201.2.3%0D%0A")) << address;
    // No letter is cut in the middle.
    const std::string kept = address.substr(0, address.find("%20..."));
    EXPECT_TRUE(kept.ends_with(std::string_view(letter) == "\xC3\xA4"       ? "%C3%A4"
                               : std::string_view(letter) == "\xE2\x82\xAC" ? "%E2%82%AC"
                               : *letter == '%'                             ? "%25"
                                                                            : "x"))
        << kept;
  }
}

TEST_F(Report, WhileOneIsMadeShowsNoSecondDialog) {
  const ScriptedDialog dialog([](const DialogContent&) {
    EXPECT_FALSE(fail("within", 1));
    return 4;
  });
  EXPECT_TRUE(fail());
  EXPECT_EQ(dialog.shown().size(), 1u);
  ASSERT_EQ(dialog.reports.size(), 2u);
  EXPECT_EQ(dialog.reports[1].description, "within");
}

TEST_F(Report, SentAgainAndAgainComesToAnEnd) {
  set_follow_hyperlink(follow);
  const ScriptedDialog dialog(Outcome::send_report);
  EXPECT_FALSE(fail());
  EXPECT_LT(dialog.shown().size(), 20u);
}

}  // namespace
}  // namespace qto::diagnostics
