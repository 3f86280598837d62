#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/run_command.hpp"
#include "tests/support/book_on_disk.hpp"
#include "tests/support/encrypting.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::string linked = QTO_SOURCE_DIR "/examples/workbooks/linked";
const std::string group = linked + "/group.xlsx";

TEST(Links, of_a_book_are_listed_with_their_state) {
  const Outcome outcome = run_qto({"links", group, "--password", "rates.xlsx=sterling"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out,
            linked + "/sales.xlsx\n    opened\n" +
                "D:\\Finance\\Rates\\rates.xlsx\n    opened; found at " + linked + "/rates.xlsx\n" +
                linked + "/loop.xlsx\n    not opened: holds a circular reference (reason 2)\n" +
                linked +
                "/forecast.xlsx\n    not opened: not found; --folder DIR says where to look "
                "(reason 3)\n"
                "https://books.example/index/prices.xlsx\n    not opened: an internet address, "
                "which is never contacted (reason 1)\n"
                "Quotes|Currencies\n    link to another application\n"
                "Word.Document.12|D:\\Finance\\Notes\\note.docx\n    link to another "
                "application\n\n"
                "group.xlsx links to 5 other books and 2 documents of other applications\n");
}

TEST(Links, of_a_book_say_why_it_was_not_opened) {
  const auto second = [](std::vector<std::string> options) {
    options.insert(options.begin(), {"links", group, "--json"});
    return json::parse(run_qto(options).out)["Links"][1];
  };
  json link = second({});
  EXPECT_EQ(link["FullNameWithPath"], "D:\\Finance\\Rates\\rates.xlsx");
  EXPECT_EQ(link["FoundAt"], linked + "/rates.xlsx");
  EXPECT_EQ(link["Exists"], true);
  EXPECT_EQ(link["Opened"], false);
  EXPECT_EQ(link["WhyNotOpened"], 5);
  EXPECT_THAT(link["Reason"], AllOf(HasSubstr("encrypted"), HasSubstr("--password")));
  link = second({"--password", "Xyzzy"});
  EXPECT_EQ(link["WhyNotOpened"], 5);
  EXPECT_THAT(link["Reason"], AllOf(HasSubstr("password is not"), Not(HasSubstr("Xyzzy"))));
  EXPECT_EQ(second({"--open", "never"})["WhyNotOpened"], 1);
  EXPECT_EQ(second({"--password", "sterling"})["Opened"], true);
}

TEST(Links, of_a_folder_show_who_refers_to_whom) {
  const Outcome outcome = run_qto({"links", linked, "--password", "sterling"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out,
            "costs.xlsx  (referred to by sales.xlsx)\n"
            "    → rates.xlsx\n"
            "group.xlsx  (referred to by sales.xlsx)\n"
            "    → sales.xlsx\n"
            "    → rates.xlsx\n"
            "    → loop.xlsx\n"
            "    → " +
                linked +
                "/forecast.xlsx  (not found)\n"
                "    → https://books.example/index/prices.xlsx  (internet address, not "
                "contacted)\n"
                "    → Quotes|Currencies  (another application)\n"
                "    → Word.Document.12|D:\\Finance\\Notes\\note.docx  (another application)\n"
                "loop.xlsx  (referred to by group.xlsx)\n"
                "rates.xlsx  (referred to by costs.xlsx, group.xlsx)\n"
                "sales.xlsx  (referred to by group.xlsx)\n"
                "    → costs.xlsx\n"
                "    → group.xlsx\n\n"
                "5 books, 10 links, 1 not found\n");
  // Without the password its own links stay unknown, and the others are there.
  const Outcome locked = run_qto({"links", linked});
  EXPECT_EQ(locked.status, 3);
  EXPECT_THAT(locked.out, AllOf(HasSubstr("rates.xlsx  cannot be read: the workbook is encrypted"),
                                HasSubstr("    → costs.xlsx"), HasSubstr("1 unreadable")));
  const json whole = json::parse(run_qto({"links", linked, "--json"}).out);
  EXPECT_EQ(whole["Books"].size(), 5u);
  EXPECT_EQ(whole["Books"][4]["ReferredToBy"], json::array({group}));
  EXPECT_EQ(whole["Books"][4]["Links"][0]["FoundAt"], linked + "/costs.xlsx");
}

TEST(Links, of_folders_below_and_of_damaged_books) {
  const BookFolder folder;
  std::filesystem::create_directory(folder.path() + "/sub");
  folder.put_book("sub/deep.xlsx", "A1=1");
  folder.put("broken.xlsm", "PK no zip");
  folder.put("~$deep.xlsx", "lock");
  folder.put("notes.txt", "no book");
  const Outcome outcome = run_qto({"links", folder.path()});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out,
              AllOf(HasSubstr("sub/deep.xlsx\n"), HasSubstr("broken.xlsm  cannot be read: the zip"),
                    HasSubstr("2 books, 0 links, 1 unreadable"), Not(HasSubstr("~$"))));
  const BookFolder empty;
  EXPECT_EQ(run_qto({"links", empty.path()}).out, "0 books, 0 links\n");
}

TEST(LinkedExample, is_drilled_as_the_user_decides) {
  struct Case {
    std::vector<std::string> arguments;
    std::string typed;
    std::vector<std::string> out;
    std::string err;
  };
  const Case cases[] = {
      {{"inputs", group, "B17", "--open", "always", "--password", "rates.xlsx=sterling"},
       "",
       {"'[rates.xlsx]Rates'!B2", "'[costs.xlsx]Costs'!B3", "Linked books opened:"},
       ""},
      {{"inputs", group, "B17", "--open", "always"},
       "",
       {"rates.xlsx: the workbook is encrypted; give its password with --password BOOK=TEXT "
        "(reason 5)"},
       ""},
      {{"inputs", group, "B17", "--open", "always", "--password", "Xyzzy"},
       "",
       {"rates.xlsx: the password is not the workbook's (reason 5)"},
       ""},
      {{"inputs", group, "B17", "--open", "ask"},
       "a\nsterling\n",
       {"'[rates.xlsx]Rates'!B2"},
       "Password of rates.xlsx: "},
      {{"tree", group, "B18", "--open", "always", "--password", "sterling"},
       "",
       {"Quotes|Currencies!EURUSD", "forecast.xlsx: not found", "'[loop.xlsx]Loop'!B4"},
       ""},
      {{"tree", group, "B18", "--open", "always", "--reading", "written"},
       "",
       {"loop.xlsx: holds a circular"},
       ""},
      {{"tree", group, "B14", "--open", "always"},
       "",
       {"an internet address, which is never contacted (reason 1)"},
       ""},
      {{"inputs", linked + "/rates.xlsx", "B2", "--password", "sterling"}, "", {}, "no formula"},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(testing::PrintToString(one.arguments));
    const Outcome outcome = run_qto(one.arguments, one.typed);
    for (const std::string& text : one.out) EXPECT_THAT(outcome.out, HasSubstr(text));
    EXPECT_THAT(outcome.err, HasSubstr(one.err));
    EXPECT_THAT(outcome.out + outcome.err,
                AllOf(Not(HasSubstr("sterling")), Not(HasSubstr("Xyzzy"))));
  }
}

TEST(EncryptedBook, asks_for_its_password_by_the_option) {
  const std::string rates = linked + "/rates.xlsx";
  const Outcome none = run_qto({"part", rates, "B2"});
  EXPECT_EQ(none.status, 4);
  EXPECT_THAT(none.err, AllOf(HasSubstr("encrypted"), HasSubstr("--password TEXT")));
  const Outcome wrong = run_qto({"part", rates, "B2", "--password", "Xyzzy"});
  EXPECT_EQ(wrong.status, 4);
  EXPECT_THAT(wrong.err, AllOf(HasSubstr("the password is not"), Not(HasSubstr("Xyzzy"))));
  EXPECT_THAT(run_qto({"part", rates, "B2", "--password", "sterling"}).out, HasSubstr("0.2"));
  const Outcome asked =
      run_qto({"inputs", linked + "/costs.xlsx", "B4", "--open", "ask"}, "y\nsterling\n");
  EXPECT_THAT(asked.out, HasSubstr("'[rates.xlsx]Rates'!B3"));
  const Outcome start = run_qto({"tree", rates, "Vat", "--open", "ask"}, "sterling\n");
  EXPECT_THAT(start.err, HasSubstr("Password of rates.xlsx: "));
  EXPECT_EQ(start.status, 2);  // opened; the name stands for a constant
  const json answer =
      json::parse(run_qto({"part", rates, "B2", "--json", "--password", "Xyzzy"}).out);
  EXPECT_EQ(answer["error"]["file"], rates);
}

}  // namespace
}  // namespace qto::test
