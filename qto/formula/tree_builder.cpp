#include "qto/formula/tree_builder.hpp"

#include <algorithm>
#include <utility>

namespace qto::formula {

std::uint32_t TreeBuilder::intern(std::string_view text) {
  const auto [entry, added] =
      text_numbers_.try_emplace(std::string(text), static_cast<std::uint32_t>(tree_.texts.size()));
  if (added) tree_.texts.emplace_back(text);
  return entry->second;
}

NodeIndex TreeBuilder::leaf(NodeKind kind, std::uint32_t payload, std::uint32_t qualifier) {
  Node node;
  node.kind = kind;
  node.payload = payload;
  node.qualifier = qualifier;
  tree_.nodes.push_back(node);
  return static_cast<NodeIndex>(tree_.nodes.size() - 1);
}

NodeIndex TreeBuilder::number(double value) {
  const NodeIndex node = leaf(NodeKind::number);
  tree_.nodes[node].number = value;
  return node;
}

NodeIndex TreeBuilder::error(ErrorValue value) {
  return leaf(NodeKind::error, static_cast<std::uint32_t>(value));
}

NodeIndex TreeBuilder::area(const AreaRef& area, std::uint32_t qualifier) {
  tree_.areas.push_back(area);
  return leaf(NodeKind::area, static_cast<std::uint32_t>(tree_.areas.size() - 1), qualifier);
}

NodeIndex TreeBuilder::name(std::string_view name, std::uint32_t qualifier) {
  return leaf(NodeKind::name, intern(name), qualifier);
}

NodeIndex TreeBuilder::text(std::string_view text) { return leaf(NodeKind::text, intern(text)); }

NodeIndex TreeBuilder::structured(StructuredRef ref, std::uint32_t qualifier) {
  tree_.structured.push_back(std::move(ref));
  return leaf(NodeKind::structured, static_cast<std::uint32_t>(tree_.structured.size() - 1),
              qualifier);
}

NodeIndex TreeBuilder::array(Ref<const VariantArray> values) {
  tree_.arrays.push_back(std::move(values));
  return leaf(NodeKind::array, static_cast<std::uint32_t>(tree_.arrays.size() - 1));
}

NodeIndex TreeBuilder::unary(Operator op, NodeIndex operand) {
  const NodeIndex index = leaf(NodeKind::unary);
  Node& node = tree_.nodes[index];
  node.op = op;
  node.child_count = 1;
  node.first_child = operand;
  return index;
}

NodeIndex TreeBuilder::binary(Operator op, NodeIndex left, NodeIndex right) {
  const NodeIndex index = leaf(NodeKind::binary);
  Node& node = tree_.nodes[index];
  node.op = op;
  node.child_count = 2;
  node.first_child = left;
  tree_.nodes[left].next = right;
  return index;
}

NodeIndex TreeBuilder::call(std::string_view function, std::uint32_t qualifier) {
  return leaf(NodeKind::call, intern(function), qualifier);
}

NodeIndex TreeBuilder::invoke(NodeIndex function) {
  const NodeIndex index = leaf(NodeKind::invoke);
  add_argument(index, no_node, function);
  return index;
}

void TreeBuilder::add_argument(NodeIndex call, NodeIndex last, NodeIndex argument) {
  if (last == no_node)
    tree_.nodes[call].first_child = argument;
  else
    tree_.nodes[last].next = argument;
  ++tree_.nodes[call].child_count;
}

std::uint32_t TreeBuilder::qualifier(const SheetQualifier& qualifier) {
  auto& known = tree_.qualifiers;
  const auto same = [&](const SheetQualifier& other) {
    return other.external == qualifier.external && other.book == qualifier.book &&
           other.folder == qualifier.folder && other.sheet == qualifier.sheet &&
           other.last_sheet == qualifier.last_sheet && other.broken == qualifier.broken;
  };
  const auto found = std::find_if(known.begin(), known.end(), same);
  const auto number = static_cast<std::uint32_t>(found - known.begin());
  if (found == known.end()) known.push_back(qualifier);
  return number;
}

SyntaxTree TreeBuilder::finish(NodeIndex root) {
  tree_.root = root;
  return std::move(tree_);
}

}  // namespace qto::formula
