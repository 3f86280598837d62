#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/late_bound/both_ways.hpp"

namespace qto::test {
namespace {

/// What the engine still holds of a foreign application when the process ends stays untouched: its
/// server may be gone by then.
TEST(ProcessEnd, AfterADrillByNameNeedsNoTidyingUp) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        static Driven driven(true);
        const auto book = driven.books.add("A1=1; B1==A1; C1==1/0; D1==C1");
        const auto cells = driven.given(book)->Worksheets(1);
        bool found = false;
        {
          const auto drill = make_ref<DrillDown>();
          drill->putref_StartUnderlyingObject(cells->Range("B1"));
          drill->FindInputs();
          found = listed(drill->InputCells()) == "A1";
        }
        std::exit(found ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace qto::test
