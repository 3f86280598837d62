#include "qto/parser/exact/walk.hpp"

#include <algorithm>

#include "qto/automation/address.hpp"
#include "qto/formula/node_text.hpp"
#include "qto/host/worksheet.hpp"

namespace qto::exact {

using formula::no_node;
using formula::Node;
using formula::NodeIndex;
using formula::NodeKind;
using formula::Operator;

namespace {

bool meets_or_spans(const Node& node) noexcept {
  return node.kind == NodeKind::binary &&
         (node.op == Operator::range || node.op == Operator::intersect);
}

}  // namespace

/// Chains of operators are as long as a text, so they are a loop.
void Walk::follow(NodeIndex index, const Scope* scope) {
  std::vector<NodeIndex> rights;
  for (;;) {
    const Node& node = formula_.at(index);
    if (node.kind == NodeKind::binary && !meets_or_spans(node))
      rights.push_back(formula_.at(node.first_child).next);
    else if (node.kind != NodeKind::unary || node.op == Operator::spill)
      break;
    index = node.first_child;
  }
  follow_leaf(formula_.at(index), index, scope);
  for (; !rights.empty(); rights.pop_back()) follow(rights.back(), scope);
}

void Walk::follow_leaf(const Node& node, NodeIndex index, const Scope* scope) {
  switch (node.kind) {
    case NodeKind::number:
      return flag_constant(node.number);
    case NodeKind::text:
      return surroundings_.add_constant(qtoFormulaContainsConstant);
    case NodeKind::array: {
      const VariantArray& array = *formula_.tree().arrays[node.payload];
      for (int row = 1; row <= array.rows(); ++row)
        for (int column = 1; column <= array.columns(); ++column)
          flag_constant(array.at(row, column));
      return;
    }
    case NodeKind::error:
      if (static_cast<ErrorValue>(node.payload) == ErrorValue::ref)
        surroundings_.remark("refers to a deleted cell");
      return;
    case NodeKind::area:
      return follow_written_area(node);
    case NodeKind::name:
      return follow_name(node, index, scope);
    case NodeKind::structured:
    case NodeKind::unary:  // a spilled range
    case NodeKind::binary:
      return follow_joined(index, scope);
    case NodeKind::call:
      return follow_call(index, scope);
    case NodeKind::invoke:
      return follow_invocation(index, scope);
    case NodeKind::boolean:
    case NodeKind::missing:
      return;
  }
}

/// As for a constant in a cell: numbers other than 0 and 1, and texts, count in full.
void Walk::flag_constant(const Variant& value) {
  if (const auto* number = value.get_if<double>())
    surroundings_.add_constant(*number != 0 && *number != 1 ? qtoFormulaContainsConstant
                                                            : qtoFormulaContainsConstZeroOrOne);
  else if (value.is_text())
    surroundings_.add_constant(qtoFormulaContainsConstant);
}

void Walk::follow_written_area(const Node& node) {
  const Place& place = formula_.place_of(node, site_, surroundings_);
  const formula::AreaRef& area = formula_.tree().areas[node.payload];
  switch (place.kind) {
    case Place::Kind::sheets:
      for (const auto& sheet : place.sheets) {
        if (!asked_host_ && formula_.plan) formula_.plan->steps.push_back({sheet, area, {}, {}});
        surroundings_.add_area(sheet, area.resolve(site_.cell));
      }
      return;
    case Place::Kind::closed:
      asked_host_ = true;
      return surroundings_.add_unknown_area(place.closed, address_of(area.resolve(site_.cell)));
    case Place::Kind::deleted:
      return surroundings_.remark("refers to a deleted cell");
    case Place::Kind::link:
      asked_host_ = true;
      return surroundings_.add_link(place.application, place.document,
                                    address_of(area.resolve(site_.cell)));
    case Place::Kind::book:
    case Place::Kind::missing:
      break;
  }
  std::string text;
  formula::append_qualifier(text, formula_.tree().qualifiers[node.qualifier]);
  surroundings_.remark("there is no sheet " + text.substr(0, text.size() - (text.empty() ? 0 : 1)));
}

void Walk::follow_areas(const Areas& areas) {
  for (const Area& area : areas) {
    if (area.closed)
      surroundings_.add_unknown_area(*area.closed, address_of(area.rect));
    else
      surroundings_.add_area(area.sheet, area.rect);
  }
}

bool Walk::follow_local(const Node& node, const Scope* scope) {
  if (node.qualifier != 0) return false;
  const Scope* local = find_local(scope, formula_.text(node));
  if (!local) return false;
  if (!local->followed && local->value != no_node) {
    local->followed = true;
    follow(local->value, local->value_scope);
  }
  return true;
}

/// A name of the sheet that is written, or of the formula's own sheet, hides one of the workbook.
Ref<host::DefinedName> Walk::find_name(const Node& node) {
  const Place& place = formula_.place_of(node, site_, surroundings_);
  if (place.kind == Place::Kind::sheets)
    if (auto found = place.sheets.front()->sheet->find_name(formula_.text(node))) return found;
  return place.workbook ? place.workbook->find_name(formula_.text(node)) : nullptr;
}

void Walk::follow_name(const Node& node, NodeIndex index, const Scope* scope) {
  if (follow_local(node, scope)) return;
  const std::string_view name = formula_.text(node);
  if (const auto found = find_name(node)) {
    if (formula_.plan) formula_.plan->steps.push_back({nullptr, {}, found, name});
    return surroundings_.add_name(found, name);
  }
  const Place& place = formula_.place_of(node, site_, surroundings_);
  asked_host_ = true;
  switch (place.kind) {
    case Place::Kind::closed:
      return surroundings_.add_unknown_name(place.closed, name);
    case Place::Kind::link:
      return surroundings_.add_link(place.application, place.document, name);
    case Place::Kind::deleted:
      return surroundings_.remark("refers to a deleted cell");
    default:
      return follow_undefined(node, index, scope);
  }
}

/// The name of a table stands for its data. Anything else is shown as what it is.
void Walk::follow_undefined(const Node& node, NodeIndex index, const Scope* scope) {
  if (const auto areas = evaluation_.areas(index, scope)) return follow_areas(*areas);
  const formula::SheetQualifier& qualifier = formula_.tree().qualifiers[node.qualifier];
  std::string name(formula_.text(node));
  ClosedPlace place;
  place.book = site_.workbook ? site_.workbook->Name() : "";
  place.path = site_.workbook ? site_.workbook->Path() : "";
  place.sheet = qualifier.sheet;
  surroundings_.add_unknown_name(place, name);
}

/// Cells that only several references together denote, or that the host has to tell.
void Walk::follow_joined(NodeIndex index, const Scope* scope) {
  asked_host_ = true;
  const Node& node = formula_.at(index);
  const auto areas = evaluation_.areas(index, scope);
  if (areas) follow_areas(*areas);
  if (node.kind == NodeKind::structured) {
    if (areas) return;
    const Place& place = formula_.place_of(node, site_, surroundings_);
    std::string text;
    formula::append_node(text, formula_.tree(), index, site_.cell);
    if (place.kind == Place::Kind::closed)
      return surroundings_.add_unknown_name(place.closed, text.substr(text.rfind('!') + 1));
    return surroundings_.remark("the table reference " + text + " denotes no cells");
  }
  std::vector<NodeIndex> ends;
  for (; meets_or_spans(formula_.at(index)) || formula_.at(index).kind == NodeKind::unary;) {
    const Node& join = formula_.at(index);
    if (join.kind == NodeKind::binary) ends.push_back(formula_.at(join.first_child).next);
    index = join.first_child;
  }
  ends.push_back(index);
  for (; !ends.empty(); ends.pop_back()) {
    if (areas)
      follow_end(ends.back(), scope);
    else
      follow(ends.back(), scope);
  }
  if (!areas) surroundings_.remark("a range in this formula cannot be determined");
}

/// What decides where a range ends. A written end is a corner of cells that are followed already.
void Walk::follow_end(NodeIndex index, const Scope* scope) {
  for (; meets_or_spans(formula_.at(index)) || formula_.at(index).op == Operator::unite;
       index = formula_.at(index).first_child)
    follow_end(formula_.at(formula_.at(index).first_child).next, scope);
  const Node& node = formula_.at(index);
  switch (node.kind) {
    case NodeKind::area:
    case NodeKind::structured:
      return;
    case NodeKind::name: {
      if (find_local(scope, formula_.text(node))) return follow(index, scope);
      const auto name = find_name(node);
      if (!name) return;
      const std::string refers_to = name->RefersTo();
      const ReadFormula target(std::string_view(refers_to).substr(refers_to.empty() ? 0 : 1),
                               site_.cell);
      const bool plain =
          target.why_broken().empty() && target.at(target.tree().root).kind == NodeKind::area;
      return plain ? void() : follow(index, scope);
    }
    default:
      return follow(index, scope);
  }
}

void Walk::follow_arguments(NodeIndex first, const Scope* scope) {
  for (; first != no_node; first = formula_.at(first).next) follow(first, scope);
}

void Walk::follow_call(NodeIndex index, const Scope* scope) {
  const Node& node = formula_.at(index);
  const std::string_view function = formula_.text(node);
  if (node.qualifier == 0) {
    if (function == "LET") return follow_let(index, scope);
    if (function == "LAMBDA") return follow_lambda(index, scope, {}, nullptr);
    if (const Choice* choice = find_choice(function);
        choice && asked(options_, choice->family) != Follow::all) {
      met_choice_ = true;
      if (choosing_) return follow_choice(*choice, index, scope);
    } else if (!choice) {
      follow_function(node, scope);
    } else if (choice->family == Family::indirect || choice->family == Family::offset) {
      surroundings_.opaque_call(function);
    }
  } else {
    surroundings_.opaque_call(function);
  }
  const bool elements = runs_over_elements(function);
  over_elements_ += elements;
  follow_arguments(node.first_child, scope);
  over_elements_ -= elements;
  follow_summed_block(index, scope);
}

/// A function of the workbook's own goes by a defined name. What neither the workbook nor the host
/// knows is an add-in's.
void Walk::follow_function(const Node& node, const Scope* scope) {
  if (follow_local(node, scope)) return;
  const std::string_view function = formula_.text(node);
  if (const auto name = find_name(node)) {
    if (formula_.plan) formula_.plan->steps.push_back({nullptr, {}, name, function});
    return surroundings_.add_name(name, function);
  }
  if (reads_elsewhere(function) || !functions_.knows(std::string(function), evaluation_))
    surroundings_.opaque_call(function);
}

const Scope* Walk::bind(const Scope* outer, std::string_view name, NodeIndex value,
                        const Scope* value_scope) {
  return &scopes_.emplace_back(Scope{outer, name, value, value_scope, !choosing_});
}

namespace {

/// The name that a parameter is given by: x, or [x] for one that may be left out.
std::string_view parameter_name(const ReadFormula& formula, NodeIndex index) noexcept {
  const Node& node = formula.at(index);
  if (node.kind == NodeKind::name) return formula.text(node);
  if (node.kind == NodeKind::structured)
    return formula.tree().structured[node.payload].first_column;
  return {};
}

}  // namespace

/// Where nothing is chosen every value is followed where it stands, otherwise where it is used.
void Walk::follow_let(NodeIndex index, const Scope* scope) {
  NodeIndex name = formula_.at(index).first_child;
  while (name != no_node && formula_.at(name).next != no_node) {
    const NodeIndex value = formula_.at(name).next;
    if (!choosing_) follow(value, scope);
    scope = bind(scope, parameter_name(formula_, name), value, scope);
    name = formula_.at(value).next;
  }
  if (name != no_node) follow(name, scope);
}

void Walk::follow_lambda(NodeIndex index, const Scope* scope, const std::vector<NodeIndex>& values,
                         const Scope* value_scope) {
  NodeIndex parameter = formula_.at(index).first_child;
  for (std::size_t i = 0; parameter != no_node && formula_.at(parameter).next != no_node; ++i) {
    const NodeIndex value = i < values.size() ? values[i] : no_node;
    scope = bind(scope, parameter_name(formula_, parameter), value, value_scope);
    parameter = formula_.at(parameter).next;
  }
  ++over_elements_;
  if (parameter != no_node) follow(parameter, scope);
  --over_elements_;
}

/// LAMBDA(x,…)(A1): where something is chosen the parameters stand for the values given.
void Walk::follow_invocation(NodeIndex index, const Scope* scope) {
  const NodeIndex function = formula_.at(index).first_child;
  const Node& node = formula_.at(function);
  if (choosing_ && node.kind == NodeKind::call && formula_.text(node) == "LAMBDA")
    return follow_lambda(function, scope, formula_.arguments(index), scope);
  follow(function, scope);
  follow_arguments(formula_.at(function).next, scope);
}

}  // namespace qto::exact
