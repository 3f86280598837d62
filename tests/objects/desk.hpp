#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"
#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// A value as a short text: numbers, "texts" in quotes, TRUE, #N/A, dates with "d", arrays as
/// {1,2;3,4}, ranges by sheet and address, "" for empty.
std::string shown(const Variant& value);

/// An application with one new book, for a test to fill.
struct Desk {
  Application app;
  Ref<host::Workbook> book = app.Workbooks()->Add();
  Ref<host::Worksheet> sheet = book->Worksheets(1);

  Ref<host::Range> at(std::string_view address) const { return sheet->Range(address); }
  /// As typed, a formula with "=" first.
  Ref<host::Range> put(std::string_view address, std::string_view typed) const {
    auto range = sheet->Range(address);
    range->put_Formula(typed);
    return range;
  }
  std::string value(std::string_view address) const { return shown(at(address)->value()); }
};

/// The book behind a handle that no interface reaches: for protection, charts and the like.
Book& book_of(const Ref<host::Workbook>& workbook);
Sheet& sheet_of(const Ref<host::Worksheet>& worksheet);

/// The text of the HostFailure that the statement throws, "" when it throws none.
template <class Statement>
std::string failure(Statement&& run) {
  try {
    run();
  } catch (const host::HostFailure& thrown) {
    EXPECT_NE(thrown.what(), std::string());
    return thrown.what();
  }
  return "";
}

#define EXPECT_FAILS(statement) EXPECT_NE(failure([&] { statement; }), "")

}  // namespace qto::embedded
