#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qto/formula/syntax_tree.hpp"
#include "qto/parser/exact/place.hpp"

namespace qto::exact {

/// A formula as structure: read once for all its copies, which differ in their cell only.
class ReadFormula {
 public:
  /// `text` without "=", references taken relative to `at`.
  ReadFormula(std::string_view text, CellPos at);

  /// What is wrong when the text is no formula; "" when it was read.
  const std::string& why_broken() const noexcept { return why_broken_; }
  const formula::SyntaxTree& tree() const noexcept { return tree_; }
  const formula::Node& at(formula::NodeIndex index) const noexcept { return tree_.at(index); }
  std::string_view text(const formula::Node& node) const noexcept {
    return tree_.texts[node.payload];
  }
  /// The arguments of a call, or of the call of a function value behind that value.
  std::vector<formula::NodeIndex> arguments(formula::NodeIndex call) const;

  /// What a node's qualifier stands for; looked up when first asked for.
  const Place& place_of(const formula::Node& node, const Site& site, Surroundings& surroundings);

  /// The precedents of a formula that has the same in all its copies: its areas, and what does not
  /// move.
  struct Step {
    Ref<SheetRecord> sheet;
    formula::AreaRef area;
    Ref<host::DefinedName> name;  ///< when the step is a name's
    std::string_view name_text;
  };
  struct Plan {
    std::vector<Step> steps;
    qtoContainsConstant constants = qtoNoConstantInFormula;
    std::vector<std::string> remarks, opaque_calls;
    bool chooses = false;  ///< some call is to be followed where it chooses
  };
  std::optional<Plan> plan;

 private:
  formula::SyntaxTree tree_;
  std::string why_broken_;
  std::vector<std::optional<Place>> places_;
};

}  // namespace qto::exact
