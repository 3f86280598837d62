#include <algorithm>

#include "qto/parser/exact/decide.hpp"

namespace qto::exact {

using formula::no_node;
using formula::Node;
using formula::NodeIndex;
using formula::NodeKind;
using formula::Operator;

Shape shape_of(const Call& call, NodeIndex node, const Scope* scope) {
  if (const auto areas = call.evaluation.areas(node, scope); areas && areas->size() == 1)
    return {areas->front().rect.rows(), areas->front().rect.columns()};
  const auto text = call.evaluation.text_of(node, scope);
  const auto value = text ? call.evaluation.elements(*text) : std::nullopt;
  if (!value || !value->is_array()) return {};
  return {value->array().rows(), value->array().columns()};
}

namespace {

/// Goes down from a table to what delivers one of its elements. Nesting is that of the formula.
class ElementFinder {
 public:
  ElementFinder(const Call& call, Outcome& outcome) : call_(call), outcome_(outcome) {}

  void find(NodeIndex index, const Scope* scope, std::int32_t row, std::int32_t column) {
    while (call_.formula.at(index).kind == NodeKind::unary &&
           call_.formula.at(index).op != Operator::spill)
      index = call_.formula.at(index).first_child;
    const Node& node = call_.formula.at(index);
    if (const auto areas = call_.evaluation.areas(index, scope))
      return find_in_areas(*areas, index, scope, row, column);
    switch (node.kind) {
      case NodeKind::number:
      case NodeKind::text:
      case NodeKind::boolean:
      case NodeKind::error:
      case NodeKind::array:
      case NodeKind::missing:
        return;
      case NodeKind::name:
        if (const Scope* local = find_local(scope, call_.formula.text(node));
            local && local->value != no_node)
          return find(local->value, local->value_scope, row, column);
        return add_all(index, scope);
      case NodeKind::binary:
        return find_in_chain(index, scope, row, column);
      case NodeKind::call:
        return find_in_call(node, index, scope, row, column);
      default:
        return add_all(index, scope);
    }
  }

 private:
  void add_all(NodeIndex index, const Scope* scope) {
    outcome_.parts.push_back({index, scope, {}});
  }

  void find_in_areas(const Areas& areas, NodeIndex index, const Scope* scope, std::int32_t row,
                     std::int32_t column) {
    if (areas.size() != 1) return add_all(index, scope);
    Area area = areas.front();
    const Rect whole = area.rect;
    // One row or column stands for all in an operation over several.
    if (row > 0 && whole.rows() > 1)
      area.rect.first.row = area.rect.last.row = whole.first.row + row - 1;
    if (column > 0 && whole.columns() > 1)
      area.rect.first.column = area.rect.last.column = whole.first.column + column - 1;
    const auto inside = area.rect.intersect(whole);
    if (!inside) return add_all(index, scope);
    area.rect = *inside;
    outcome_.parts.push_back({no_node, nullptr, {area}});
  }

  /// Operations run element by element.
  void find_in_chain(NodeIndex index, const Scope* scope, std::int32_t row, std::int32_t column) {
    std::vector<NodeIndex> rights;
    for (; call_.formula.at(index).kind == NodeKind::binary;
         index = call_.formula.at(index).first_child) {
      const Operator op = call_.formula.at(index).op;
      if (op == Operator::range || op == Operator::intersect || op == Operator::unite) break;
      rights.push_back(call_.formula.at(call_.formula.at(index).first_child).next);
    }
    if (call_.formula.at(index).kind == NodeKind::binary)
      add_all(index, scope);
    else
      find(index, scope, row, column);
    for (; !rights.empty(); rights.pop_back()) find(rights.back(), scope, row, column);
  }

  void find_in_call(const Node& node, NodeIndex index, const Scope* scope, std::int32_t row,
                    std::int32_t column) {
    const std::string_view function = call_.formula.text(node);
    const std::vector<NodeIndex> arguments = call_.formula.arguments(index);
    if (function == "TRANSPOSE" && arguments.size() == 1)
      return find(arguments[0], scope, column, row);
    const bool chooses = (function == "CHOOSE" && arguments.size() > 1) ||
                         (function == "IF" && arguments.size() > 1);
    if (!chooses || row == 0 || column == 0) return add_all(index, scope);
    const auto chosen = element_of(arguments[0], scope, row, column);
    if (!chosen) return add_all(index, scope);
    const std::size_t argument =
        function == "IF" ? (*chosen != 0 ? 1 : 2) : static_cast<std::size_t>(*chosen);
    if (*chosen < 0 || argument == 0 || argument >= arguments.size()) {
      if (function != "IF") add_all(index, scope);
      return;
    }
    find(arguments[argument], scope, row, column);
  }

  /// The number that an array of conditions or indexes holds for an element.
  std::optional<double> element_of(NodeIndex index, const Scope* scope, std::int32_t row,
                                   std::int32_t column) {
    const auto text = call_.evaluation.text_of(index, scope);
    const auto value = text ? call_.evaluation.elements(*text) : std::nullopt;
    if (!value) return std::nullopt;
    if (!value->is_array()) return number_in(*value);
    const VariantArray& array = value->array();
    row = array.rows() == 1 ? 1 : row;
    column = array.columns() == 1 ? 1 : column;
    if (row > array.rows() || column > array.columns()) return std::nullopt;
    return number_in(array.at(row, column));
  }

  const Call& call_;
  Outcome& outcome_;
};

}  // namespace

void add_element(const Call& call, NodeIndex table, const Scope* scope, std::int32_t row,
                 std::int32_t column, Outcome& outcome) {
  ElementFinder(call, outcome).find(table, scope, row, column);
}

}  // namespace qto::exact
