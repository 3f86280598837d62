#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "tests/support/text_book.hpp"

/// Formulas and what the exact reading finds in them.
namespace qto::test {

/// Every reference written.
inline constexpr Options everything{.Reading = 1};
/// Only what the present result uses.
inline constexpr Options used{.ParseIf = 1,
                              .ParseLookup = 1,
                              .ParseSumif = 1,
                              .ParseIndirect = 3,
                              .ParseOffset = 3,
                              .ParseIndex = 1,
                              .ParseMatch = 6,
                              .Reading = 1};
/// That, and what decides it.
inline constexpr Options conditions{.ParseIf = 2,
                                    .ParseLookup = 2,
                                    .ParseSumif = 2,
                                    .ParseIndirect = 5,
                                    .ParseOffset = 5,
                                    .ParseIndex = 1,
                                    .ParseMatch = 6,
                                    .Reading = 1};

struct Read {
  const char* formula;
  const char* found;
};

/// Enters each formula in Z9 of the first sheet.
inline void check(Books& books, const Options& options, std::initializer_list<Read> rows) {
  for (const Read& row : rows) {
    books.enter(std::string("Z9==") + row.formula);
    EXPECT_EQ(precedents(books, "Z9", options), row.found) << row.formula;
  }
}

/// The same, entered as an array formula.
inline void check_array(Books& books, const Options& options, std::initializer_list<Read> rows) {
  for (const Read& row : rows) {
    books.range("Z9")->put_FormulaArray(std::string("=") + row.formula);
    EXPECT_EQ(precedents(books, "Z9", options), row.found) << row.formula;
  }
}

/// The remark on the formula of Z9.
inline std::string remark(Books& books, const Options& options, const std::string& formula) {
  books.enter("Z9==" + formula);
  const auto drill = drill_from(books, "Z9", options);
  drill->put_MaximumDepth(1);
  drill->DrillHere();
  return drill->StartModelPart()->DrillRemark();
}

}  // namespace qto::test
