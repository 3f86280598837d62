#include <gtest/gtest.h>

#include "qto/links/main.hpp"
#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

/// A part, and a log of the events that it raises.
struct Watched {
  explicit Watched(const Ref<Object>& object, std::string_view type = "Range") {
    part->TitleChanged.add([this](const std::string& before, std::string& now) {
      log += " title " + before + ">" + now;
    });
    part->AfterSetResults.add([this] { log += " results"; });
    part->FormulaChanged.add([this](const std::string& before, const std::string& now) {
      log += " formula " + before + ">" + now;
    });
    part->ValueChanged.add([this](const Variant&, const Variant&) { log += " value"; });
    part->Create(object, type);
  }
  std::string logged() { return std::exchange(log, ""); }

  Ref<ModelPart> part = make_ref<ModelPart>();
  std::string log;
};

class Results : public testing::Test {
 protected:
  Results() { Main::set_shared_application(books_.app); }
  ~Results() override { Main::set_shared_application(nullptr); }
  Books books_{"A1=1"};
};

TEST_F(Results, TitlesComeFromHeadingsAndNames) {
  books_.enter(
      "B1=2003; C1=2004; A2=Revenue; A3=12; B4=Indented; E5=Low; "
      "name Total=Sheet1!$D$2; name Local!Own=Sheet1!$D$3");
  const struct {
    const char* cell;
    const char* title;
  } rows[] = {{"C2", "Revenue.2004"},
              {"A2", ""},
              {"B1", "1"},
              {"C1", "1"},
              {"C3", ""},
              {"C4", "Indented.2004"},
              {"D2", "Total"},
              {"E2", "Revenue.Low"},
              {"F2", "Revenue"},
              {"D3", "Local!Own"}};
  for (const auto& row : rows) {
    Watched watched(books_.range(row.cell));
    watched.part->SetResultsValues();
    const std::string expected = std::string(row.title) == "1" ? "" : row.title;
    EXPECT_EQ(watched.part->Title(), expected) << row.cell;
  }
}

TEST_F(Results, AreSetOnceUntilSomethingChanges) {
  books_.enter("A2=Revenue; B2==A1*2");
  Watched watched(books_.range("B2"));
  EXPECT_EQ(watched.part->FormulaLocal(), "");
  watched.part->SetResultsValues();
  watched.part->SetResultsValues();
  EXPECT_EQ(watched.logged(), " title >Revenue.2 results");
  EXPECT_EQ(watched.part->AddressShortLocal(), "B2");
  EXPECT_EQ(watched.part->FormulaLocal(), "=A1*2");
  EXPECT_EQ(watched.part->AddressLongLocal(qtoaddressSheet), "'Sheet1'!B2");
  watched.part->ForceResultsRecalc();
  EXPECT_FALSE(watched.part->ResultsSet());
  watched.part->SetResultsValues();
  EXPECT_EQ(watched.logged(), " results");
}

TEST_F(Results, AHandlersTitleIsTheTitle) {
  books_.enter("A2=Revenue");
  Watched watched(books_.range("B2"));
  watched.part->TitleChanged.add([](const std::string&, std::string& title) { title = "Mine"; });
  watched.part->SetResultsValues();
  EXPECT_EQ(watched.part->Title(), "Mine");
  watched.logged();
  watched.part->put_Title("Given");
  watched.part->put_Title("Given");
  EXPECT_EQ(watched.logged(), " title Mine>Given title Given>Given");
  EXPECT_EQ(watched.part->Title(), "Given");  // here the handler's is not stored
}

TEST_F(Results, OfAnUnknownPartAreSetWithoutAnEvent) {
  Watched watched(nullptr);
  watched.part->SetResultsValues();
  EXPECT_TRUE(watched.part->ResultsSet());
  EXPECT_EQ(watched.logged(), "");
}

TEST_F(Results, FormulasAreReadAgainEachTime) {
  books_.enter("B2==A1");
  Watched watched(books_.range("B2"));
  EXPECT_EQ(watched.part->Formula(), "=A1");
  watched.part->put_CheckedForPrecedents(true);
  watched.part->putref_DirectPrecedents(make_ref<ModelParts>());
  EXPECT_EQ(watched.part->Formula(), "=A1");
  EXPECT_TRUE(watched.part->DirectPrecedents());
  EXPECT_EQ(watched.logged(), "");
  books_.enter("B2==A1+1");
  EXPECT_EQ(watched.part->Formula(), "=A1+1");
  EXPECT_EQ(watched.logged(), " formula =A1>=A1+1");
  EXPECT_FALSE(watched.part->DirectPrecedents());
  EXPECT_EQ(watched.part->value(), Variant(2.0));
  books_.enter("B2=7");
  EXPECT_TRUE(watched.part->CheckedForPrecedents());  // no formula: nothing to determine
  EXPECT_TRUE(watched.part->IsConstant());
  EXPECT_EQ(watched.logged(), " formula =A1+1>7");
}

TEST_F(Results, ChangesAreFoundAndTold) {
  books_.enter("B2==A1*2");
  Watched watched(books_.range("B2"));
  watched.part->Formula();
  EXPECT_EQ(watched.part->Text(), "2");
  watched.part->SetResultsValues();
  watched.logged();
  watched.part->CheckForChanges();
  EXPECT_EQ(watched.logged(), "");
  EXPECT_TRUE(watched.part->ResultsSet());
  watched.part->put_CheckedForPrecedents(true);
  watched.part->putref_DirectPrecedents(make_ref<ModelParts>());
  books_.enter("A1=21");
  watched.part->CheckForChanges();
  EXPECT_EQ(watched.logged(), " value");
  EXPECT_FALSE(watched.part->ResultsSet());
  EXPECT_FALSE(watched.part->DirectPrecedents());
  EXPECT_EQ(watched.part->value(), Variant(42.0));
  EXPECT_EQ(watched.part->Text(), "42");
}

TEST_F(Results, BlocksAndNullsCompareWithoutFailing) {
  const Reports reports;
  books_.enter("A2=2; name Block=Sheet1!$A$1:$A$2; name Rate=0.5; name Wrong=#N/A");
  Watched block(books_.range("A1:A2"));
  EXPECT_TRUE(block.part->value().is_array());
  EXPECT_EQ(block.part->Text(), "");
  block.part->SetResultsValues();
  block.part->CheckForChanges();
  EXPECT_EQ(block.logged(), " title >Block results");
  Watched name(books_.opened[0]->Names("Block"), "Name");
  EXPECT_EQ(name.part->Formula(), "=Sheet1!$A$1:$A$2");
  EXPECT_TRUE(name.part->value().is_null());
  name.part->CheckForChanges();
  EXPECT_EQ(name.logged(), "");
  Watched rate(books_.opened[0]->Names("Rate"), "Name");
  rate.part->Formula();
  EXPECT_EQ(rate.part->value(), Variant(0.5));
  rate.part->SetResultsValues();
  EXPECT_EQ(rate.part->Text(), "0.50");
  EXPECT_EQ(rate.part->FormulaLocal(), "=0.5");
  EXPECT_EQ(rate.part->AddressShortLocal(), "Rate");
  Watched wrong(books_.opened[0]->Names("Wrong"), "Name");
  wrong.part->Formula();
  EXPECT_TRUE(wrong.part->HasError());
  EXPECT_EQ(reports.text(), "");
}

TEST_F(Results, HiddenFormulasAreAbsorbed) {
  books_.enter("B2==A1");
  auto& model = *books_.models[0];
  model.sheets()[0]->cells.touch({2, 2}).set_style(model.styles.add("General", true, true));
  model.sheets()[0]->protection.enabled = true;
  const Reports reports;
  Watched watched(books_.range("B2"));
  EXPECT_FALSE(watched.part->FormulaHidden());
  EXPECT_EQ(watched.part->Formula(), "");
  EXPECT_TRUE(watched.part->FormulaHidden());
  watched.part->SetResultsValues();
  EXPECT_EQ(watched.part->FormulaLocal(), "");
  EXPECT_EQ(watched.logged(), " results");
  EXPECT_EQ(reports.text(), "");
}

// Precedent state

TEST_F(Results, FlagsOfPrecedents) {
  books_.enter("B2==A1");
  Watched watched(books_.range("B2"));
  ModelPart& part = *watched.part;
  EXPECT_FALSE(part.CheckedForPrecedents());  // waits for the parser
  part.put_IsConstant(true);
  EXPECT_FALSE(part.IsConstant());
  EXPECT_TRUE(part.HasConstant());
  part.put_IsConstant(false);
  EXPECT_FALSE(part.HasConstant());
  part.put_FormulaContainsConstant(qtoFormulaContainsConstZeroOrOne);
  EXPECT_TRUE(part.HasConstant());
  EXPECT_EQ(raised_by([&] { part.put_FormulaContainsConstant(qtoContainsConstant(3)); }),
            -2147221500);
  EXPECT_EQ(part.FormulaContainsConstant(), qtoFormulaContainsConstZeroOrOne);
  EXPECT_TRUE(Watched(books_.range("A1")).part->CheckedForPrecedents());
}

TEST_F(Results, AllPrecedentsAreTheDirectOnesUnlessDrilledIntelligently) {
  Watched watched(books_.range("A1"));
  ModelPart& part = *watched.part;
  const auto direct = make_ref<ModelParts>();
  const auto all = make_ref<ModelParts>();
  part.putref_DirectPrecedents(direct);
  part.putref_AllPrecedents(all);
  part.put_IntelligentDrillingUsed(true);
  EXPECT_EQ(part.AllPrecedents(), all);
  part.put_IntelligentDrillingUsed(false);
  EXPECT_EQ(part.AllPrecedents(), direct);
  part.put_IntelligentDrillingUsed(true);
  EXPECT_EQ(part.AllPrecedents(), nullptr);  // the reading before gave it up
  part.put_CheckedForPrecedents(false);
  EXPECT_EQ(part.DirectPrecedents(), nullptr);
}

}  // namespace
}  // namespace qto::test
