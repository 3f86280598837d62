#include "qto/hosts/libreoffice/formulas/from_office.hpp"

#include <gtest/gtest.h>

#include "qto/automation/text.hpp"

namespace qto::libreoffice {
namespace {

class TestBook final : public Surroundings {
 public:
  TestBook() {
    names_.add("CEILING.XCL", "CEILING");
    names_.add("IFNA", "_xlfn.IFNA");
    names_.add("COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETEOMONTH", "EOMONTH");
  }
  const FunctionNames& functions() const override { return names_; }
  bool is_sheet(std::string_view name) const override {
    return text::equal_fold(name, "Data") || text::equal_fold(name, "Cash flow");
  }
  LinkTarget link(std::string_view url) const override {
    LinkTarget target = link_target(url);
    if (target.name == "open.xlsx") target.folder.clear();
    return target;
  }
  std::optional<LinkTarget> link(int number) const override {
    if (number != 1) return std::nullopt;
    return LinkTarget{"/books/", "sales.xlsx"};
  }
  std::string structured(const formula::StructuredRef& reference) const override {
    return reference.table + ":" + reference.first_column;
  }

 private:
  FunctionNames names_;
};

struct Row {
  const char* office;
  const char* engine;
};

TEST(FromOffice, ReadsEveryPartOfAFormula) {
  const Row rows[] = {
      {"B3/B2", "B3/B2"},
      {"SUM($Data.B2:B4;1.5E-3)", "SUM(Data!B2:B4,1.5E-3)"},
      {"Data.$A$1", "Data!$A$1"},
      {"$'Cash flow'.B2", "'Cash flow'!B2"},
      {"$'It''s'.B2", "'It''s'!B2"},
      // Names with dots are no sheets.
      {"Unit.J*2", "Unit.J*2"},
      {"Preferences.A1", "Preferences.A1"},
      {"SUM($North.B2:$South.B2)", "SUM(North:South!B2)"},
      {"SUM($North.$B$2:$South.$C$3)", "SUM(North:South!$B$2:$C$3)"},
      {"SUM($'A b'.B2:$C.B2)", "SUM('A b:C'!B2)"},
      {"SUM($Data.E:F)", "SUM(Data!E:F)"},
      {"$Data.E:E!$Data.11:11", "Data!E:E Data!11:11"},
      {"SUM((A1:B2~C3))", "SUM((A1:B2,C3))"},
      {"IF(A1=TRUE();FALSE();\"a;b|c~!\")", "IF(A1=TRUE,FALSE,\"a;b|c~!\")"},
      {"{1;2|3;\"x\"\"y\"}", "{1,2;3,\"x\"\"y\"}"},
      {"CEILING.XCL(2;1)+IFNA(A1;0)", "CEILING(2,1)+IFNA(A1,0)"},
      {"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETEOMONTH(A1;1)", "EOMONTH(A1,1)"},
      {"LOG10(A1)", "LOG10(A1)"},
      {"#REF!.A1+$Data.#REF!+#N/A", "#REF!A1+Data!#REF!+#N/A"},
      {"'file:///books/my%20sales.xlsx'#$North.B5", "'/books/[my sales.xlsx]North'!B5"},
      {"'file:///books/open.xlsx'#$North.B5", "[open.xlsx]North!B5"},
      {"'file:///D:/Data/rates.xlsx'#$Rates.B2", "'D:\\Data\\[rates.xlsx]Rates'!B2"},
      {"'https://host/x/p.xlsx'#$Prices.B2", "'https://host/x/[p.xlsx]Prices'!B2"},
      {"SUM('file:///b/s.xlsx'#$N.B5:'file:///b/s.xlsx'#$S.B5)", "SUM('/b/[s.xlsx]N:S'!B5)"},
      {"[1]!Growth+[1]north!share", "'/books/sales.xlsx'!Growth+'/books/[sales.xlsx]north'!share"},
      {"[2]!Growth", "[2]!Growth"},
      // What was found nowhere is shown in small letters.
      {"SUM('a b:c'!b2)+data!#ref!", "SUM('a b:c'!b2)+data!#REF!"},
      {"SUM(Sales[Amount])", "SUM(Sales:Amount)"},
      {"Sales[[#This Row];[Price]]*2", "Sales:Price*2"},
      {"A1 & \n \" b\"", "A1 & \n \" b\""},
  };
  for (const Row& row : rows) EXPECT_EQ(from_office(row.office, TestBook()), row.engine);
}

TEST(FromOffice, TellsWhatMovesWithItsCell) {
  const auto moves = [](const char* text) {
    bool relative = false;
    from_office(text, TestBook(), &relative);
    return relative;
  };
  EXPECT_TRUE(moves("A1"));
  EXPECT_TRUE(moves("$Data.$A1"));
  EXPECT_TRUE(moves("$A$1:$B2"));
  EXPECT_TRUE(moves("$Data.A:$B"));
  EXPECT_FALSE(moves("$Data.$A$1:$B$2"));
  EXPECT_FALSE(moves("$A:$B"));
  EXPECT_FALSE(moves("Rate*2"));
}

TEST(FromOffice, TextsThatAreNoFormulasEnd) {
  for (const char* text : {"'", "\"open", "[", "[1", "Sales[", "$", "$'x", "{", "#", "1E", "'a'#$"})
    EXPECT_NO_THROW(from_office(text, TestBook())) << text;
}

}  // namespace
}  // namespace qto::libreoffice
