#pragma once

#include <string>
#include <vector>

#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded::conformance {

/// Which call of a formula the references stand in through which cells come in.
class ReferenceOwners {
 public:
  ReferenceOwners(const formula::SyntaxTree& tree, const Sheet& sheet, CellPos at);
  /// The innermost function around the first written reference that holds the cell; "(operators)"
  /// outside of calls, "(names and computed references)" for a cell that stands in none.
  std::string of(const CellAddress& cell) const;

 private:
  struct Owned {
    const Sheet* sheet;
    Rect block;
    std::string function;
  };
  std::vector<Owned> references_;
};

}  // namespace qto::embedded::conformance
