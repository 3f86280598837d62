#pragma once

#include <gtest/gtest.h>

#include <ostream>

#include "tests/evaluate/small_book.hpp"

namespace qto::embedded {

/// A formula and the text of its result.
struct FormulaRow {
  const char* formula;
  const char* result;
};
inline void PrintTo(const FormulaRow& row, std::ostream* out) { *out << row.formula; }

/// Evaluates all rows in a book with these cells.
template <std::size_t count>
void expect_results(std::string_view cells, const FormulaRow (&rows)[count]) {
  SmallBook book(cells);
  for (const FormulaRow& row : rows) EXPECT_EQ(book.run(row.formula), row.result) << row.formula;
}

}  // namespace qto::embedded
