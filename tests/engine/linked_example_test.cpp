// The shipped books that refer to each other in every form.

#include <gtest/gtest.h>

#include <filesystem>

#include "qto/links/link_list.hpp"
#include "tests/support/book_on_disk.hpp"
#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

class LinkedExample : public testing::Test {
 protected:
  static std::string folder() { return QTO_SOURCE_DIR "/examples/workbooks/linked"; }

  void SetUp() override { open("group.xlsx"); }
  Ref<host::Workbook> open(const std::string& name) {
    book_ = app_.Workbooks()->Open(folder() + "/" + name);
    return book_;
  }
  Ref<host::Range> cell(std::string_view address) { return book_->Worksheets(1)->Range(address); }
  Ref<DrillDown> drill(std::string_view address) {
    auto drill = make_ref<DrillDown>();
    drill->putref_StartUnderlyingObject(cell(address));
    drill->AskToOpenBook.add([this](auto& part, bool&) { log_ += " ask " + part->WorkBookName(); });
    drill->AskForPassword.add([this](auto& part, std::string& password) {
      log_ += " password " + part->WorkBookName();
      password = password_;
    });
    drill->BeforeInternetAccess.add(
        [this](const std::string& url, const std::string& name, bool& cancel) {
          log_ += " internet " + url + " " + name;
          cancel = true;
        });
    drill->AfterOpenBookAttempt.add(
        [this](const std::string&, const std::string& name, qtoReasonNotOpened reason) {
          log_ += " after " + name + " " + std::to_string(reason);
        });
    drill->DDEOLELink.add([this](const std::string& application, const std::string& document,
                                 const std::string& item, Ref<ModelPart>& part) {
      log_ += " link " + application + "~" + document + "~" + item;
      EXPECT_EQ(part->ObjectType(), "!LINK");
    });
    return drill;
  }
  /// The inputs of a cell of the first sheet, after the events.
  std::string inputs(std::string_view address) {
    log_.clear();
    const Reports reports;
    const auto here = drill(address);
    here->FindInputs();
    return log_ + " | " + listed(here->InputCells()) + reports.text();
  }

  embedded::Application app_;
  Ref<host::Workbook> book_;
  std::string log_;
  std::string password_ = "sterling";
};

TEST_F(LinkedExample, FormulasShowTheBooksClosedAndOpen) {
  const std::string path = folder() + "/";
  const std::pair<const char*, std::string> closed[] = {
      {"B3", "='" + path + "[sales.xlsx]North'!B5"},
      {"B4", "=SUM('" + path + "[sales.xlsx]North'!B2:B4)"},
      {"B5", "=SUM('" + path + "[sales.xlsx]North:South'!B5)"},
      {"B6", "='" + path + "sales.xlsx'!Growth"},
      {"B7", "='" + path + "[sales.xlsx]North'!Share"},
      {"B10", "=B9*'" + path + "[rates.xlsx]Rates'!B2"},  // stored with another folder
      {"B11", "='" + path + "rates.xlsx'!Vat"},
      {"B13", "=[forecast.xlsx]Plan!B2"},  // its folder was not known even to the writer
      {"B14", "='https://books.example/index/[prices.xlsx]Prices'!B2"},
      {"B15", "=Quotes|Currencies!EURUSD"},
  };
  for (const auto& [address, formula] : closed) EXPECT_EQ(cell(address)->Formula(), formula);
  const auto group = book_;
  open("sales.xlsx");
  const std::pair<const char*, const char*> opened[] = {
      {"B3", "=[sales.xlsx]North!B5"},
      {"B5", "=SUM([sales.xlsx]North:South!B5)"},
      {"B6", "=sales.xlsx!Growth"},
      {"B7", "=[sales.xlsx]North!Share"},
  };
  for (const auto& [address, formula] : opened)
    EXPECT_EQ(group->Worksheets(1)->Range(address)->Formula(), formula);
}

TEST_F(LinkedExample, LinkSourcesAreFullNamesAsStored) {
  LinkList links;
  links.putref_Workbook(book_);
  std::vector<std::string> sources;
  for (std::int32_t i = 1; i <= links.CountLinks(); ++i) sources.push_back(links.Links(i));
  EXPECT_EQ(sources,
            (std::vector<std::string>{folder() + "/sales.xlsx", "D:\\Finance\\Rates\\rates.xlsx",
                                      folder() + "/loop.xlsx", folder() + "/forecast.xlsx",
                                      "https://books.example/index/prices.xlsx"}));
  EXPECT_EQ(book_->LinkSources(2),
            (std::vector<std::string>{"Quotes|Currencies",
                                      "Word.Document.12|D:\\Finance\\Notes\\note.docx"}));
}

TEST_F(LinkedExample, CellsRangesAndNamesAreFollowed) {
  const std::pair<const char*, const char*> rows[] = {
      {"B3",
       " ask sales.xlsx after sales.xlsx 0 | [sales.xlsx]North!B2 [sales.xlsx]North!B3 "
       "[sales.xlsx]North!B4"},
      {"B4", " | [sales.xlsx]North!B2 [sales.xlsx]North!B3 [sales.xlsx]North!B4"},
      {"B5",
       " | [sales.xlsx]North!B2 [sales.xlsx]North!B3 [sales.xlsx]North!B4 "
       "[sales.xlsx]South!B2 [sales.xlsx]South!B3 [sales.xlsx]South!B4"},
      {"B6", " | [sales.xlsx]North!B8"},
      {"B7", " | [sales.xlsx]North!B9"},
  };
  for (const auto& [address, expected] : rows) EXPECT_EQ(inputs(address), expected) << address;
}

TEST_F(LinkedExample, AChainIsFollowedToItsEncryptedEnd) {
  EXPECT_EQ(inputs("B9"),
            " ask sales.xlsx after sales.xlsx 0 ask costs.xlsx after costs.xlsx 0 ask rates.xlsx "
            "password rates.xlsx after rates.xlsx 0 | [sales.xlsx]North!B2 [sales.xlsx]North!B3 "
            "[sales.xlsx]North!B4 [costs.xlsx]Costs!B2 [costs.xlsx]Costs!B3 [rates.xlsx]Rates!B3");
}

TEST_F(LinkedExample, BooksThatReferToEachOtherEnd) {
  open("sales.xlsx");
  EXPECT_EQ(inputs("B7"),
            " | [sales.xlsx]North!B2 [sales.xlsx]North!B3 [sales.xlsx]North!B4 "
            "[group.xlsx]Group!B2");
}

TEST_F(LinkedExample, ASpanOfSheetsIsFollowedInABookOpenedOnTheWay) {
  EXPECT_EQ(inputs("B5"),
            " ask sales.xlsx after sales.xlsx 0 | [sales.xlsx]North!B2 [sales.xlsx]North!B3 "
            "[sales.xlsx]North!B4 [sales.xlsx]South!B2 [sales.xlsx]South!B3 [sales.xlsx]South!B4");
}

TEST_F(LinkedExample, WhatCannotBeOpenedStaysUnknown) {
  const std::pair<const char*, const char*> rows[] = {
      {"B12", " ask loop.xlsx after loop.xlsx 2 | ?[loop.xlsx]Loop!B4"},
      {"B13", " ask forecast.xlsx | ?[forecast.xlsx]Plan!B2"},
      {"B14",
       " ask prices.xlsx internet https://books.example/index/ prices.xlsx | "
       "?[prices.xlsx]Prices!B2"},
  };
  for (const auto& [address, expected] : rows) EXPECT_EQ(inputs(address), expected);
  password_ = "wrong";
  EXPECT_EQ(inputs("B11"),
            " ask rates.xlsx password rates.xlsx after rates.xlsx 5 | ?[rates.xlsx]Vat");
  password_ = "";
  EXPECT_EQ(inputs("B11"), " ask rates.xlsx password rates.xlsx | ?[rates.xlsx]Vat");
}

TEST_F(LinkedExample, LinksToApplicationsAreParts) {
  EXPECT_EQ(inputs("B15"), " link Quotes~Currencies~EURUSD | ?Quotes|Currencies!EURUSD");
  EXPECT_EQ(inputs("B16"),
            " link Word.Document.12~'D:\\Finance\\Notes\\note.docx'~'!OLE_LINK1' | "
            "?Word.Document.12|'D:\\Finance\\Notes\\note.docx'!'!OLE_LINK1'");
}

}  // namespace
}  // namespace qto::test
