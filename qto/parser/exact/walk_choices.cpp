#include <algorithm>

#include "qto/parser/exact/walk.hpp"

namespace qto::exact {

using formula::no_node;
using formula::Node;
using formula::NodeIndex;
using formula::NodeKind;

void Walk::follow_choice(const Choice& choice, NodeIndex index, const Scope* scope) {
  asked_host_ = true;
  const Call call{formula_, evaluation_, scope, formula_.arguments(index), over_elements_ > 0};
  const Outcome outcome = choice.decide(call);
  if (!outcome.why.empty()) {
    surroundings_.remark(std::string(choice.function) + " is followed whole: " + outcome.why);
    if (choice.family == Family::indirect || choice.family == Family::offset)
      surroundings_.opaque_call(choice.function);
    follow_arguments(formula_.at(index).first_child, scope);
    return follow_summed_block(index, scope);
  }
  for (const Part& part : outcome.parts) follow_part(part);
  if (asked(options_, choice.family) != Follow::condition) return;
  for (std::size_t i = 0; i < std::min(call.count(), outcome.considered); ++i) {
    if (choice.role(i, call.count()) == 'c')
      follow(call.arguments[i], scope);
    else if (choice.family != Family::branch)
      follow_deciders(call.arguments[i], scope);
  }
}

/// Of a table or of keys only some cells are followed, but what decides where they lie is part of
/// the condition: what the calls in such an argument choose by.
void Walk::follow_deciders(NodeIndex index, const Scope* scope) {
  const Node& node = formula_.at(index);
  switch (node.kind) {
    case NodeKind::name:
      if (const Scope* local =
              node.qualifier == 0 ? find_local(scope, formula_.text(node)) : nullptr) {
        if (local->value != no_node) follow_deciders(local->value, local->value_scope);
        return;
      }
      return follow_end(index, scope);
    case NodeKind::call: {
      const Choice* choice = node.qualifier == 0 ? find_choice(formula_.text(node)) : nullptr;
      const auto arguments = formula_.arguments(index);
      for (std::size_t i = 0; i < arguments.size(); ++i) {
        // Of what OFFSET starts from only the place counts.
        const bool start = choice && choice->family == Family::offset && i == 0;
        if (choice && !start && choice->role(i, arguments.size()) == 'c')
          follow(arguments[i], scope);
        else
          follow_deciders(arguments[i], scope);
      }
      return;
    }
    case NodeKind::unary:
    case NodeKind::binary:
    case NodeKind::invoke:
      for (NodeIndex child = node.first_child; child != no_node; child = formula_.at(child).next)
        follow_deciders(child, scope);
      return;
    default:
      return;
  }
}

/// SUMIF and AVERAGEIF take as many cells as they test, from the corner of what is written.
void Walk::follow_summed_block(NodeIndex index, const Scope* scope) {
  const Node& node = formula_.at(index);
  if (formula_.text(node) != "SUMIF" && formula_.text(node) != "AVERAGEIF") return;
  const auto arguments = formula_.arguments(index);
  if (node.qualifier != 0 || arguments.size() < 3) return;
  const auto tested = evaluation_.areas(arguments[0], scope);
  const auto summed = evaluation_.areas(arguments[2], scope);
  if (!tested || !summed || tested->size() != 1 || summed->size() != 1) return;
  Area block = summed->front();
  const Rect& shape = tested->front().rect;
  const CellPos corner = block.rect.first;
  block.rect.last = {std::min(corner.row + shape.rows() - 1, max_rows),
                     std::min(corner.column + shape.columns() - 1, max_columns)};
  // In a copy the written ranges may differ where they are alike here.
  asked_host_ = true;
  if (block.rect != summed->front().rect) follow_areas({block});
}

void Walk::follow_part(const Part& part) {
  if (part.node != no_node)
    follow(part.node, part.scope);
  else
    follow_areas(part.areas);
}

}  // namespace qto::exact
