#pragma once

#include <map>
#include <string>
#include <vector>

#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded::conformance {

/// Why a recalculated cell does not hold what the file remembered.
enum class Reason : std::uint8_t {
  time_or_chance,    ///< its formula asks the clock or draws numbers
  unknown_function,  ///< its formula calls a function that the tables do not have
  inherited,         ///< its formula gives the remembered value over remembered values
  own,               ///< its formula gives something else over the same cells
};
inline constexpr int reasons = 4;
const char* name_of(Reason reason);

struct Difference {
  Reason reason;
  std::string cell, formula, got, want;
  bool array = false;
};

struct FunctionCounts {
  long compared = 0;
  long kept = 0;
  long differ[reasons] = {};
};

/// What a full recalculation of a book came to.
struct BookResult {
  long compared = 0;
  long kept = 0;  ///< of those, cells whose formula cannot be evaluated here and kept their value
  long without_result = 0;  ///< cells for which the file remembers none
  long differ[reasons] = {};
  std::map<std::string, FunctionCounts> by_function;
  std::vector<Difference> differences;
  double seconds = 0;
};

/// Recalculates the whole book as it was opened, with all remembered values, and compares each cell
/// with what it held before. The clock shows what the book's own NOW() or TODAY() remembers, where
/// it has one.
BookResult check_book(Book& book);

}  // namespace qto::embedded::conformance
