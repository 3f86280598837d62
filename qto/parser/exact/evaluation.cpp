#include "qto/parser/exact/evaluation.hpp"

#include <algorithm>

#include "qto/automation/error.hpp"
#include "qto/formula/node_text.hpp"
#include "qto/host/worksheet.hpp"

namespace qto::exact {

using formula::NodeIndex;
using formula::NodeKind;
using formula::Operator;

const host::Worksheet* Evaluation::sheet() const {
  if (site_.sheet) return site_.sheet->sheet.get();
  return nullptr;
}

/// Every name that the part uses of those in scope, and those that their values use.
void Evaluation::names_needed(NodeIndex index, const Scope* scope,
                              std::vector<const Scope*>& needed) const {
  std::vector<std::pair<NodeIndex, const Scope*>> work{{index, scope}};
  while (!work.empty()) {
    const auto [node_index, seen_from] = work.back();
    work.pop_back();
    const formula::Node& node = formula_.at(node_index);
    const bool may_be_local =
        (node.kind == NodeKind::name || node.kind == NodeKind::call) && node.qualifier == 0;
    if (may_be_local) {
      const Scope* local = find_local(seen_from, formula_.text(node));
      if (local && std::find(needed.begin(), needed.end(), local) == needed.end()) {
        needed.push_back(local);
        if (local->value != formula::no_node) work.emplace_back(local->value, local->value_scope);
      }
    }
    for (NodeIndex child = node.first_child; child != formula::no_node;
         child = formula_.at(child).next)
      work.emplace_back(child, seen_from);
  }
}

std::optional<std::string> Evaluation::text_of(NodeIndex index, const Scope* scope) const {
  std::string text;
  formula::append_node(text, formula_.tree(), index, site_.cell);
  if (!scope) return text;
  std::vector<const Scope*> needed;
  names_needed(index, scope, needed);
  for (; scope && !needed.empty(); scope = scope->outer) {
    const auto found = std::find(needed.begin(), needed.end(), scope);
    if (found == needed.end()) continue;
    if (scope->value == formula::no_node) return std::nullopt;
    std::string around = "LET(";
    around.append(scope->name).append(",");
    formula::append_node(around, formula_.tree(), scope->value, site_.cell);
    text = std::move(around.append(",").append(text).append(")"));
  }
  return text;
}

namespace {

/// An answer of the host; nothing when it fails.
template <class Ask>
auto answer(Ask&& ask) -> std::optional<decltype(ask())> {
  try {
    return ask();
  } catch (const AutomationError&) {
    throw;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace

std::optional<Variant> Evaluation::value(const std::string& text) const {
  if (!sheet()) return std::nullopt;
  return answer([&] { return sheet()->elements_in_cell(site_.cell, text, false); });
}

std::optional<Variant> Evaluation::elements(const std::string& text) const {
  if (!sheet()) return std::nullopt;
  return answer([&] { return sheet()->elements_in_cell(site_.cell, text, true); });
}

std::optional<Areas> Evaluation::areas(const std::string& text) const {
  if (!sheet()) return std::nullopt;
  const auto found = answer([&]() -> Areas {
    const auto range = sheet()->range_in_cell(site_.cell, text);
    if (!range) return {};
    const auto record = surroundings_.record_of(range->Worksheet());
    if (range->AreasCount() == 1) return {{record, nullptr, range->block()}};
    Areas areas;
    const std::string address = range->Address(false, false);
    for (std::string_view rest = address; !rest.empty();) {
      const std::size_t comma = std::min(rest.find(','), rest.size());
      if (const auto rect = parse_range_text(rest.substr(0, comma)))
        areas.push_back({record, nullptr, *rect});
      rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    return areas;
  });
  if (!found || found->empty()) return std::nullopt;
  return found;
}

std::optional<Areas> Evaluation::written_area(const formula::Node& node) const {
  const Place& place = formula_.place_of(node, site_, surroundings_);
  const Rect rect = formula_.tree().areas[node.payload].resolve(site_.cell);
  if (place.kind == Place::Kind::closed) return Areas{{nullptr, &place.closed, rect}};
  if (place.kind != Place::Kind::sheets) return std::nullopt;
  Areas areas;
  for (const auto& sheet : place.sheets) areas.push_back({sheet, nullptr, rect});
  return areas;
}

std::optional<Areas> Evaluation::single_areas(NodeIndex index, const Scope* scope) const {
  const formula::Node& node = formula_.at(index);
  if (node.kind == NodeKind::area) return written_area(node);
  if (node.kind == NodeKind::name && node.qualifier == 0) {
    const Scope* local = find_local(scope, formula_.text(node));
    if (local && local->value == formula::no_node) return std::nullopt;
    if (local) return areas(local->value, local->value_scope);
  }
  const auto text = text_of(index, scope);
  return text ? areas(*text) : std::nullopt;
}

namespace {

std::optional<Areas> range_between(const Areas& left, const Areas& right) {
  Area all = left.front();
  for (const Areas* side : {&left, &right})
    for (const Area& area : *side) {
      if (!area.same_sheet(all)) return std::nullopt;
      all.rect.first.row = std::min(all.rect.first.row, area.rect.first.row);
      all.rect.first.column = std::min(all.rect.first.column, area.rect.first.column);
      all.rect.last.row = std::max(all.rect.last.row, area.rect.last.row);
      all.rect.last.column = std::max(all.rect.last.column, area.rect.last.column);
    }
  return Areas{all};
}

std::optional<Areas> intersection(const Areas& left, const Areas& right) {
  Areas common;
  for (const Area& a : left)
    for (const Area& b : right)
      if (a.same_sheet(b))
        if (const auto rect = a.rect.intersect(b.rect))
          common.push_back({a.sheet, a.closed, *rect});
  if (common.empty()) return std::nullopt;
  return common;
}

std::optional<Areas> joined(Operator op, Areas left, const Areas& right) {
  if (op == Operator::range) return range_between(left, right);
  if (op == Operator::intersect) return intersection(left, right);
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

bool joins_references(const formula::Node& node) noexcept {
  return node.kind == NodeKind::binary &&
         (node.op == Operator::range || node.op == Operator::intersect ||
          node.op == Operator::unite);
}

}  // namespace

/// A chain to the left is as long as the text; only what stands in parentheses is recursion.
std::optional<Areas> Evaluation::areas(NodeIndex index, const Scope* scope) const {
  std::vector<const formula::Node*> chain;
  for (; joins_references(formula_.at(index)); index = formula_.at(index).first_child)
    chain.push_back(&formula_.at(index));
  auto found = single_areas(index, scope);
  for (; found && !chain.empty(); chain.pop_back()) {
    const auto right = areas(formula_.at(chain.back()->first_child).next, scope);
    found = right ? joined(chain.back()->op, std::move(*found), *right) : std::nullopt;
  }
  return found;
}

}  // namespace qto::exact
