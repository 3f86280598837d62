#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "qto/automation/address.hpp"
#include "qto/hosts/embedded/book/cell.hpp"
#include "qto/hosts/embedded/book/formula_record.hpp"

namespace qto::embedded {

class Book;

/// Brings formula texts into a book so that cells whose formulas are the same relative to their own
/// position get the same FormulaId. Hot while a file is read: a million individually written
/// formulas of one shape must cost one parse and one record.
class FormulaIntern {
 public:
  explicit FormulaIntern(Book& book) : book_(book) {}
  /// The id of a normal formula (text without "=") in the cell `at`.
  FormulaId intern(std::string_view text, CellPos at);
  /// A new array formula or data table over `block`; never shared.
  FormulaId add_array(std::string_view text, const Rect& block);
  FormulaId add_data_table(std::string_view text, const Rect& block);

 private:
  FormulaId add_block(FormulaKind kind, std::string_view text, const Rect& block);

  Book& book_;
  std::unordered_multimap<std::uint64_t, FormulaId> by_hash_;
  FormulaId last_ = 0;  // neighbours mostly share their formula
  std::string key_;     // kept for its memory
};

}  // namespace qto::embedded
