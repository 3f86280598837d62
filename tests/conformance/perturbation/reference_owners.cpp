#include "tests/conformance/perturbation/reference_owners.hpp"

namespace qto::embedded::conformance {

ReferenceOwners::ReferenceOwners(const formula::SyntaxTree& tree, const Sheet& sheet, CellPos at) {
  struct Visit {
    formula::NodeIndex node;
    const std::string* function;
  };
  static const std::string outside = "(operators)";
  std::vector<Visit> open{{tree.root, &outside}};
  while (!open.empty()) {
    const Visit visit = open.back();
    open.pop_back();
    const formula::Node& node = tree.at(visit.node);
    const bool call = node.kind == formula::NodeKind::call;
    for (formula::NodeIndex child = node.first_child; child != formula::no_node;
         child = tree.at(child).next)
      open.push_back({child, call ? &tree.texts[node.payload] : visit.function});
    if (node.kind != formula::NodeKind::area) continue;
    const formula::SheetQualifier& qualifier = tree.qualifiers[node.qualifier];
    const Sheet* on = qualifier.sheet.empty() ? &sheet : sheet.book().find_sheet(qualifier.sheet);
    if (on && !qualifier.external && qualifier.book.empty() && qualifier.last_sheet.empty())
      references_.push_back({on, tree.areas[node.payload].resolve(at), *visit.function});
  }
}

std::string ReferenceOwners::of(const CellAddress& cell) const {
  for (const Owned& reference : references_)
    if (reference.sheet == cell.sheet && reference.block.contains(cell.pos))
      return reference.function;
  return "(names and computed references)";
}

}  // namespace qto::embedded::conformance
