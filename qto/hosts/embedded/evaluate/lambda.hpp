#pragma once

#include <string>
#include <vector>

#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/embedded/evaluate/context.hpp"

namespace qto::embedded {

/// A name that stands for a value while part of a formula is evaluated.
struct LocalName {
  std::string name;
  Operand value;
};

/// A function as a value: its parameters and body, and what it saw where it was written. The tree
/// must live as long as the evaluation.
class Lambda final : public Object {
 public:
  std::string_view TypeName() const noexcept override { return "Lambda"; }

  std::vector<std::string> parameters;
  const formula::SyntaxTree* tree = nullptr;
  formula::NodeIndex body = formula::no_node;
  FormulaPlace place;
  std::vector<LocalName> seen;
  bool array = false;
};

}  // namespace qto::embedded
