#include <gtest/gtest.h>

#include "tests/support/diagnostics_fixtures.hpp"
#include "tests/support/failing_memory.hpp"
#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

/// A list that is short for lack of memory is never taken for the answer.
TEST(OutOfMemory, NoInputIsLeftOutWithoutAWord) {
  Books books("B1==SUM(A1:A40)+Rate; C1==SUM(A20:A60)+B1; name Rate=Sheet1!$A$50");
  for (int row = 1; row <= 60; ++row)
    books.range("A" + std::to_string(row))->put_value(static_cast<double>(row));
  const std::string all = inputs(books, "C1");
  bool whole = false;
  for (std::int64_t n = 1; !whole; n += 1 + n / 40) {
    const auto drill = drill_from(books, "C1");
    const ScriptedDialog dialog([](const auto&) -> std::optional<std::int32_t> {
      return static_cast<std::int32_t>(diagnostics::Outcome::leave);
    });
    bool raised = false;
    try {
      const FailingMemory failing(n);
      drill->FindInputs();
    } catch (const std::bad_alloc&) {
      raised = true;
    }
    whole = !FailingMemory::failed();
    const bool told = raised || !dialog.reports.empty();
    EXPECT_TRUE(told || listed(drill->InputCells()) == all) << "allocation " << n;
    ASSERT_LT(n, 1'000'000);
  }
  EXPECT_EQ(inputs(books, "C1"), all);
}

}  // namespace
}  // namespace qto::test
