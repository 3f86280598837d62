#pragma once

#include <string_view>

#include "qto/automation/text.hpp"
#include "qto/formula/syntax_tree.hpp"

namespace qto::exact {

/// A name that LET or LAMBDA gives to a value, and what surrounds it. The innermost comes first.
struct Scope {
  const Scope* outer = nullptr;
  std::string_view name;
  /// What it stands for, read in `value_scope`; no_node for a parameter that nobody has told yet.
  formula::NodeIndex value = formula::no_node;
  const Scope* value_scope = nullptr;
  /// The references of the value are among the precedents already.
  mutable bool followed = false;
};

inline const Scope* find_local(const Scope* scope, std::string_view name) noexcept {
  while (scope && !text::equal_fold(scope->name, name)) scope = scope->outer;
  return scope;
}

}  // namespace qto::exact
