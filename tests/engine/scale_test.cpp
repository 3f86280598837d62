#include <gtest/gtest.h>
#include <sys/resource.h>

#include "qto/hosts/embedded/formulas/formula_intern.hpp"
#include "tests/support/text_book.hpp"

/// Sizes at which recursion by depth or work by the square would show.
namespace qto::test {
namespace {

// An unoptimised build is slow, and runs out of stack the sooner.
#ifdef NDEBUG
constexpr int chain_length = 1'000'000;
#else
constexpr int chain_length = 150'000;
#endif

/// A1 holds an error, every cell below refers to the one above it.
void fill_chain(embedded::Book& book) {
  embedded::Sheet& sheet = *book.sheets()[0];
  embedded::FormulaIntern formulas(book);
  sheet.cells.touch({1, 1}).set_error(ErrorValue::na);
  for (int row = 2; row <= chain_length; ++row) {
    sheet.cells.touch({row, 1}).set_error(ErrorValue::na);
    sheet.cells.set_formula({row, 1}, formulas.intern("A" + std::to_string(row - 1), {row, 1}));
  }
}

class LongChain : public testing::Test {
 protected:
  LongChain() {
    books_.add("");
    fill_chain(*books_.models[0]);
    drill_ = drill_from(books_, "A" + std::to_string(chain_length));
    rlimit stack{};
    getrlimit(RLIMIT_STACK, &stack);
    // On a larger stack a recursive walk might pass.
    EXPECT_LE(stack.rlim_cur, rlim_t{8} << 20);
  }
  Books books_;
  Ref<DrillDown> drill_;
};

TEST_F(LongChain, IsDrilledAndReleased) {
  std::int32_t analysed = 0;
  drill_->put_MaxItems(chain_length - 1);
  drill_->MaxItemsExceeded.add([&](int, int count, bool& stop, int) {
    analysed = count;
    stop = false;
  });
  drill_->DrillHere();
  EXPECT_EQ(analysed, chain_length - 1);
  EXPECT_EQ(listed(drill_->StartModelPart()->DirectPrecedents()),
            "A" + std::to_string(chain_length - 1));
  drill_ = nullptr;
}

TEST_F(LongChain, HasOneInput) {
  drill_->FindInputs();
  EXPECT_EQ(listed(drill_->InputCells()), "A1");
}

TEST_F(LongChain, HasOneOriginOfItsError) {
  drill_->TraceError();
  EXPECT_EQ(listed(drill_->ErrorCells()), "A1");
}

TEST(WholeColumn, BecomesAPartPerCell) {
  Books books("A5=1; B1==SUM(A:A)");
  const auto drill = drill_from(books, "B1");
  drill->FindInputs();
  EXPECT_EQ(drill->InputCells()->Count(), max_rows);
  EXPECT_EQ(drill->InputCells()->Item(max_rows)->AddressShort(), "A1048576");
  const auto& list = drill->StartModelPart()->DirectPrecedents();
  list->Remove(1);
  EXPECT_EQ(list->Item(1)->AddressShort(), "A2");
}

/// What a large range does to its lists must be what the same cells one by one would do.
TEST(LargeRanges, AreSharedByFormulasButNotTheirLists) {
  Books books(
      "D1=1; D7==E1; D9==F1; E1=5; B1==E1+SUM(D1:D5000)+F2; B2==SUM(D1:D5000,D1:D10); "
      "B3==SUM(D4000:D9000,D1:D5000); A1==B1+B2+B3");
  const auto drill = drill_from(books, "A1");
  drill->FindInputs();
  EXPECT_EQ(drill->InputCells()->Count(), 9000 - 2 + 3);  // D7 and D9 rest on E1 and F1; F2
  const auto& top = drill->StartModelPart()->DirectPrecedents();
  const Ref<ModelParts> first = top->Item(1)->DirectPrecedents();
  EXPECT_EQ(first->Count(), 5002);
  EXPECT_EQ(first->Item(1)->AddressShort(), "E1");
  EXPECT_EQ(first->Item(2)->AddressShort(), "D1");
  EXPECT_EQ(first->Item(5002)->AddressShort(), "F2");
  EXPECT_EQ(first->Item(5003), nullptr);
  const Ref<ModelParts> second = top->Item(2)->DirectPrecedents();
  EXPECT_EQ(second->Count(), 5000);
  EXPECT_EQ(second->Item(7), first->Item(8));  // the same part
  EXPECT_EQ(listed(second->Item(7)->DirectPrecedents()), "E1");
  EXPECT_EQ(top->Item(3)->DirectPrecedents()->Count(), 9000);
  second->Remove(7);
  EXPECT_EQ(second->Count(), 4999);
  EXPECT_EQ(second->Item(7)->AddressShort(), "D8");
  EXPECT_EQ(second->Item(first->Item(8)->UniqueKey()), nullptr);
  EXPECT_EQ(first->Item(8)->AddressShort(), "D7");
}

TEST(LargeRanges, LeadToErrorsAndAreFiltered) {
  Books books(
      "D4000==1/E1; E1=0; D2=7; B1==SUM(D1:D5000); B2==SUM(D1:D5000); A1==B1+B2; "
      "A2==VLOOKUP(7,D1:G5000,1,FALSE); G1==SUM(D1:D5000)");
  auto drill = drill_from(books, "A1");
  drill->TraceError();
  EXPECT_EQ(listed(drill->ErrorCells()), "D4000");
  drill = drill_from(books, "B1", {.ShowBlanks = false});
  drill->DrillHere();
  EXPECT_EQ(listed(drill->StartModelPart()->DirectPrecedents()), "D2 D4000");
  EXPECT_EQ(drill->StartModelPart()->AllPrecedents()->Count(), 5000);
  drill = drill_from(books, "A2", {.ParseLookup = 1});
  drill->FindInputs();
  EXPECT_EQ(listed(drill->InputCells()), "A2 D2");
  EXPECT_EQ(drill->StartModelPart()->AllPrecedents()->Count(), 20000);
}

/// A column, a row and nearly the whole sheet: no part is made that nobody looks at.
TEST(LargeRanges, ThatCrossComeBlockByBlock) {
  Books books("D7=1; D9=0; E4==1/D9; A3==SUM(D:D,1:1)+SUM(D:XFD)");
  auto drill = drill_from(books, "A3");
  drill->put_MaxItems(1000);
  drill->FindInputs();
  EXPECT_TRUE(drill->ExceededMaxItems());
  EXPECT_LT(drill->InputCells()->Count(), 1100);
  const auto& list = drill->StartModelPart()->DirectPrecedents();
  // Of what is nearly the whole sheet the used cells count.
  EXPECT_EQ(list->Count(), max_rows + max_columns - 1 + 7);
  const std::pair<std::int32_t, std::string_view> places[] = {
      {1, "D1"},
      {max_rows, "D1048576"},
      {max_rows + 1, "A1"},
      {max_rows + 3, "C1"},
      {max_rows + 4, "E1"},
      {max_rows + max_columns - 1, "XFD1"},
      {max_rows + max_columns, "E3"},
  };
  for (const auto& [place, cell] : places) EXPECT_EQ(list->Item(place)->AddressShort(), cell);
  drill = drill_from(books, "A3");
  drill->put_MaxItems(1000);
  drill->TraceError();
  EXPECT_TRUE(drill->ExceededMaxItems());
}

/// In a circle that a depth limit allows, the parts of large ranges are given back as well.
TEST(LargeRanges, OnACircleAreReleased) {
  Books books("A1==SUM(A1:A5000)");
  auto drill = drill_from(books, "A1");
  drill->put_MaximumDepth(3);
  drill->DrillHere();
  const Ref<SheetRecord> record = drill->StartModelPart()->sheet_record();
  EXPECT_EQ(drill->StartModelPart()->DirectPrecedents()->Count(), 5000);
  drill = nullptr;
  make_ref<DrillDown>();
  EXPECT_EQ(record->ref_count(), 1u);
}

/// Every formula sees all cells above it: most entries of its list are met again and replaced.
TEST(SharedPrecedents, AreReplacedInLinearTime) {
  constexpr int rows = 700;
  Books books("");
  embedded::Book& book = *books.models[0];
  embedded::FormulaIntern formulas(book);
  for (int row = 1; row <= rows; ++row) {
    book.sheets()[0]->cells.touch({row, 1}).set_number(row);
    if (row > 1)
      book.sheets()[0]->cells.set_formula(
          {row, 1}, formulas.intern("SUM(A$1:A" + std::to_string(row - 1) + ")", {row, 1}));
  }
  const auto drill = drill_from(books, "A" + std::to_string(rows));
  drill->FindInputs();
  EXPECT_EQ(listed(drill->InputCells()), "A1");
}

/// Parts hold their sheet's record: when they are gone, so are their holds on it.
TEST(CircularGraphs, AreReleasedOnceNobodyHoldsThem) {
  Books books("A1==B1+C1; B1==A1+Z1; C1==B1+D1; D1==IF(A1>0,C1,E1)");
  auto drill = drill_from(books, "A1", {.ParseIf = 1, .ShowBlanks = false});
  drill->put_MaximumDepth(9);
  drill->DrillHere();
  EXPECT_EQ(tree(drill->StartModelPart()), "A1(B1(A1(C1(D1 B1) B1)) C1)");
  const Ref<SheetRecord> record = drill->StartModelPart()->sheet_record();
  Ref<ModelParts> kept = drill->StartModelPart()->DirectPrecedents();
  drill = nullptr;
  make_ref<DrillDown>();
  EXPECT_EQ(kept->Item(1)->DirectPrecedents()->Count(), 1);  // still whole for whoever holds a list
  EXPECT_GT(record->ref_count(), 4u);
  kept = nullptr;
  make_ref<DrillDown>();
  EXPECT_EQ(record->ref_count(), 1u);
}

}  // namespace
}  // namespace qto::test
