#include "qto/diagnostics/console_dialog.hpp"

#include <gmock/gmock.h>

#include <deque>

namespace qto::diagnostics {
namespace {

using testing::HasSubstr;

/// A dialog whose user types the lines given, and then ends the input.
struct Terminal {
  explicit Terminal(std::deque<std::string> typed)
      : lines(std::move(typed)),
        dialog([this](std::string_view text) { written.append(text); },
               [this](std::string_view prompt) -> std::optional<std::string> {
                 written.append(prompt);
                 if (lines.empty()) return std::nullopt;
                 std::string line = std::move(lines.front());
                 lines.pop_front();
                 return line;
               }) {}
  std::deque<std::string> lines;
  std::string written;
  ConsoleDialog dialog;
};

DialogContent content() {
  DialogContent content;
  content.caption = "Error Report";
  content.message = "Something failed. \r\nPlease help.";
  content.texts = {"Thank you."};
  content.report = "Error 9\r\n Module: Parser\r\n";
  content.further_lines = " Formula cell: [Plan.xlsx]Sheet1!B7\r\n";
  content.buttons = {{3, "&Quit the program"}, {4, "&Continue"}, {6, "&Don't report"}};
  return content;
}

TEST(ConsoleDialog, TakesLettersAndNumbersAndAsksAgain) {
  const struct {
    std::deque<std::string> typed;
    std::optional<std::int32_t> position;
  } rows[] = {{{"q"}, 3},          {{" D "}, 6},     {{"continue"}, 4}, {{"4"}, 4},
              {{"", "x", "c"}, 4}, {{"8", "5"}, {}}, {{}, {}}};
  for (const auto& [typed, position] : rows) {
    Terminal terminal(typed);
    EXPECT_EQ(terminal.dialog.show(content()), position);
  }
}

TEST(ConsoleDialog, ShowsReportAndChoices) {
  Terminal terminal({"d"});
  terminal.dialog.show(content());
  EXPECT_EQ(terminal.written,
            "\nError Report\n\nSomething failed. \nPlease help.\n\nError 9\n Module: Parser\n"
            " Formula cell: [Plan.xlsx]Sheet1!B7\n\nThank you.\n\n  [q] Quit the program\n"
            "  [c] Continue\n  [d] Don't report\n  [a] Don't report, and don't ask again\n"
            "Choice: ");
}

TEST(ConsoleDialog, CanBeSilenced) {
  Terminal terminal({"a"});
  EXPECT_EQ(terminal.dialog.show(content()), 6);
  terminal.written.clear();
  EXPECT_EQ(terminal.dialog.show(content()), 6);
  EXPECT_EQ(terminal.written, "");
}

TEST(ConsoleDialog, AsksAndTells) {
  Terminal terminal({"perhaps", "Y", "no"});
  EXPECT_TRUE(terminal.dialog.ask("Did it appear?"));
  EXPECT_FALSE(terminal.dialog.ask("And now?"));
  EXPECT_FALSE(terminal.dialog.ask("At the end?"));
  terminal.dialog.tell("Call us.\r\n");
  EXPECT_THAT(terminal.written, HasSubstr("Did it appear? [y]es, [n]o: "));
  EXPECT_TRUE(terminal.written.ends_with("Call us.\n\n"));
}

}  // namespace
}  // namespace qto::diagnostics
