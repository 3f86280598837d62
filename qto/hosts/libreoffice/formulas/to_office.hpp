#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qto/automation/address.hpp"
#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/libreoffice/formulas/function_names.hpp"

namespace qto::libreoffice {

/// What the writing of a formula text asks of the book that it is to be evaluated in.
class PieceSurroundings {
 public:
  virtual ~PieceSurroundings() = default;
  virtual const FunctionNames& functions() const = 0;
  /// The text to write for a name, nothing to leave the name.
  virtual std::optional<std::string> name(std::string_view name) const = 0;
  /// The full name of a linked book that a formula names without its folder, or "".
  virtual std::string full_name(std::string_view book) const = 0;
};

/// A piece of a formula as the suite's parser reads it.
struct OfficePiece {
  std::string text;
  /// A block of one column, of one row, that an ordinary formula meets in its own row or column.
  bool needs_row = false;
  bool needs_column = false;
};

/// Rewrites a formula text of the engine's form, without "=", for the suite's parser of .xlsx
/// formulas. ROW() and COLUMN() are those of the cell `at`.
OfficePiece to_office(std::string_view text, CellPos at, const PieceSurroundings& book);

}  // namespace qto::libreoffice
