#include "qto/parser/exact/read_formula.hpp"

#include "qto/formula/parser.hpp"

namespace qto::exact {

ReadFormula::ReadFormula(std::string_view text, CellPos at) {
  formula::ParsedFormula parsed = formula::parse_formula(text, at);
  tree_ = std::move(parsed.tree);
  why_broken_ = std::move(parsed.why_broken);
  places_.resize(tree_.qualifiers.size());
}

std::vector<formula::NodeIndex> ReadFormula::arguments(formula::NodeIndex call) const {
  std::vector<formula::NodeIndex> found;
  const formula::Node& node = at(call);
  found.reserve(node.child_count);
  for (formula::NodeIndex child = node.first_child; child != formula::no_node;
       child = at(child).next)
    found.push_back(child);
  if (node.kind == formula::NodeKind::invoke) found.erase(found.begin());
  return found;
}

const Place& ReadFormula::place_of(const formula::Node& node, const Site& site,
                                   Surroundings& surroundings) {
  std::optional<Place>& place = places_[node.qualifier];
  if (!place) place = resolve_place(tree_.qualifiers[node.qualifier], site, surroundings);
  return *place;
}

}  // namespace qto::exact
