#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/libreoffice/formulas/function_names.hpp"
#include "qto/hosts/libreoffice/formulas/link_target.hpp"

namespace qto::libreoffice {

/// What the reading of a formula text asks of the book that holds it.
class Surroundings {
 public:
  virtual ~Surroundings() = default;
  virtual const FunctionNames& functions() const = 0;
  virtual bool is_sheet(std::string_view name) const = 0;
  /// The book of an address, without folder when it is open.
  virtual LinkTarget link(std::string_view url) const = 0;
  /// The book that the file numbers so, from 1.
  virtual std::optional<LinkTarget> link(int number) const = 0;
  /// A structured reference as the plain reference that it denotes in the formula's cell, or an
  /// error constant.
  virtual std::string structured(const formula::StructuredRef& reference) const = 0;
};

/// A formula text of the suite's interface (English, Sheet1.A1, ";" between arguments), without
/// "=", in the form that the engine reads: Sheet1!A1, "," between arguments, the functions' names
/// of .xlsx files without prefix, structured references as plain ones. What it cannot read stays.
/// `relative` is set when a reference moves with the formula's cell.
std::string from_office(std::string_view text, const Surroundings& book, bool* relative = nullptr);

}  // namespace qto::libreoffice
