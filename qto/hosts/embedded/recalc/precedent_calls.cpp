#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/function_spec.hpp"
#include "qto/hosts/embedded/recalc/precedent_walk.hpp"

namespace qto::embedded {
namespace {

/// The constant at the node, 1 for one that is left out; nothing for anything else.
std::optional<std::int32_t> constant_position(const formula::SyntaxTree& tree,
                                              formula::NodeIndex index) {
  if (index == formula::no_node) return 1;
  const formula::Node& node = tree.at(index);
  if (node.kind != formula::NodeKind::number || node.number < 1 || node.number > max_rows)
    return std::nullopt;
  return static_cast<std::int32_t>(node.number);
}

std::optional<std::int32_t> distance(const formula::RefAxis& first, const formula::RefAxis& last) {
  if (first.absolute != last.absolute || last.value < first.value) return std::nullopt;
  return last.value - first.value;
}

}  // namespace

void PrecedentWalk::visit_call(const Part& part) {
  const formula::Node& node = part.at();
  const std::string& name = part.tree->texts[node.payload];
  const FunctionSpec* spec = functions_.find(name);
  if (spec && spec->has(changes_always)) list_.is_volatile = true;
  if (!spec) visit_called_name(part);
  const SpecialFunction function = special_function(name);
  if (function == SpecialFunction::bind_names || function == SpecialFunction::lambda)
    bind_locals(part);
  const bool fixed_index = function == SpecialFunction::index && visit_fixed_index(part);
  if (function == SpecialFunction::sum_range_if) visit_sum_range(part);
  if (function == SpecialFunction::table_column || function == SpecialFunction::table_row)
    visit_table(part, function);
  std::vector<Part> arguments;
  int position = 0;
  for (formula::NodeIndex child = node.first_child; child != formula::no_node;
       child = part.tree->at(child).next) {
    if (position != 0 || !fixed_index) {
      arguments.push_back(argument(part, child, position, function, spec));
      if (is_conditional(function, position, node.child_count)) arguments.back().conditional = true;
    }
    ++position;
  }
  work_.insert(work_.end(), arguments.rbegin(), arguments.rend());
}

/// A call of what is no function: a name or a local whose value is one.
void PrecedentWalk::visit_called_name(const Part& call) {
  if (is_local(call, call.tree->texts[call.at().payload])) return;
  Part target;
  const DefinedName* name = find_name(call, target);
  if (!name) {
    list_.cannot_evaluate = true;
    return;
  }
  target.use = Use::full;
  if (names_seen_.insert({name, target.use, target.conditional}).second) push(target);
}

PrecedentWalk::Part PrecedentWalk::argument(const Part& call, formula::NodeIndex node, int position,
                                            SpecialFunction function,
                                            const FunctionSpec* spec) const {
  if (hands_on(function, position, call.at().child_count)) return call.child(node, call.use);
  if (function != SpecialFunction::none) {
    const Use use = special_use(call, position, function);
    if (use != Use::single) return call.child(node, use);
    return call.child(node, call.value_use());
  }
  const Parameter kind = spec && spec->max_args > 0 ? spec->parameter(position) : Parameter::values;
  switch (kind) {
    case Parameter::values:
    case Parameter::reference:
      return call.child(node, Use::full);
    case Parameter::array: {
      Part part = call.child(node, Use::full);
      part.array = true;
      return part;
    }
    default:
      return call.child(node, call.value_use());
  }
}

/// The use of an argument of a special function; `single` stands for a plain value.
Use PrecedentWalk::special_use(const Part& call, int position, SpecialFunction function) const {
  switch (function) {
    case SpecialFunction::looks_at_address:
      return Use::address;
    case SpecialFunction::looks_at_formula:
      return Use::watched;
    case SpecialFunction::offset:
      return position == 0 ? Use::address : Use::single;
    case SpecialFunction::index:
      if (position != 0) return Use::single;
      return call.use == Use::address ? Use::address : Use::watched;
    case SpecialFunction::cell: {
      if (position == 0) return Use::single;
      const formula::Node& what = call.tree->at(call.at().first_child);
      if (what.kind != formula::NodeKind::text) return Use::address;
      const std::string& text = call.tree->texts[what.payload];
      const bool reads =
          text::equal_ascii_nocase(text, "contents") || text::equal_ascii_nocase(text, "type");
      return reads ? Use::full : Use::address;
    }
    case SpecialFunction::table_column:
    case SpecialFunction::table_row:
      return position == 1 ? Use::watched : Use::single;
    case SpecialFunction::result_vector:
      if (position == 1) return Use::full;
      return position == 2 ? Use::watched : Use::single;
    case SpecialFunction::sum_range_if:
      return position == 1 ? Use::single : position == 0 ? Use::full : Use::watched;
    case SpecialFunction::bind_names:
    case SpecialFunction::lambda:
      return Use::full;
    default:
      return Use::single;
  }
}

/// INDEX over a written block with constant positions reads one cell.
bool PrecedentWalk::visit_fixed_index(const Part& call) {
  const formula::NodeIndex block = call.at().first_child;
  if (block == formula::no_node || call.at().child_count < 2 || call.at().child_count > 3)
    return false;
  const auto found = leaf(call.child(block, call.use));
  if (!found) return false;
  const formula::NodeIndex second = call.tree->at(block).next;
  auto row = constant_position(*call.tree, second);
  auto column = constant_position(*call.tree, call.tree->at(second).next);
  const auto rows = distance(found->area.first_row, found->area.last_row);
  const auto columns = distance(found->area.first_column, found->area.last_column);
  if (!row || !column || !rows || !columns) return false;
  if (*rows == 0 && call.at().child_count == 2) std::swap(row, column);
  if (*row > *rows + 1 || *column > *columns + 1) return false;
  formula::AreaRef cell = found->area;
  cell.shape = AreaShape::cell;
  cell.first_row.value += *row - 1;
  cell.first_column.value += *column - 1;
  cell.last_row = cell.first_row;
  cell.last_column = cell.first_column;
  add(cell, found->sheet, call, call.use);
  return true;
}

/// The keys of a table are read, wherever the result comes from.
void PrecedentWalk::visit_table(const Part& call, SpecialFunction function) {
  if (call.at().child_count < 2) return;
  const formula::NodeIndex table = call.tree->at(call.at().first_child).next;
  const auto found = leaf(call.child(table, Use::full));
  if (!found || found->area.shape == AreaShape::cell) {
    push(call.child(table, Use::full));
    return;
  }
  formula::AreaRef keys = found->area;
  const bool in_column = function == SpecialFunction::table_column;
  if (in_column && distance(keys.first_column, keys.last_column)) {
    keys.last_column = keys.first_column;
    if (keys.shape == AreaShape::rows) keys.shape = AreaShape::area;
  } else if (!in_column && distance(keys.first_row, keys.last_row)) {
    keys.last_row = keys.first_row;
    if (keys.shape == AreaShape::columns) keys.shape = AreaShape::area;
  }
  add(keys, found->sheet, call, Use::full);
}

/// The block that is added up has the shape of the one that is tested, whatever its own.
void PrecedentWalk::visit_sum_range(const Part& call) {
  if (call.at().child_count < 3) return;
  const formula::NodeIndex tested = call.at().first_child;
  const formula::NodeIndex summed = call.tree->at(call.tree->at(tested).next).next;
  const auto criteria = leaf(call.child(tested, Use::full));
  const auto sum = leaf(call.child(summed, Use::full));
  const auto rows =
      criteria ? distance(criteria->area.first_row, criteria->area.last_row) : std::nullopt;
  const auto columns =
      criteria ? distance(criteria->area.first_column, criteria->area.last_column) : std::nullopt;
  if (!sum || !rows || !columns) {
    push(call.child(summed, Use::full));
    return;
  }
  formula::AreaRef area = sum->area;
  area.shape = AreaShape::area;
  area.last_row = {area.first_row.value + *rows, area.first_row.absolute};
  area.last_column = {area.first_column.value + *columns, area.first_column.absolute};
  add(area, sum->sheet, call, Use::full);
}

void PrecedentWalk::bind_locals(const Part& call) {
  const bool every_second =
      special_function(call.tree->texts[call.at().payload]) == SpecialFunction::bind_names;
  int position = 0;
  for (formula::NodeIndex child = call.at().first_child; child != formula::no_node; ++position) {
    const formula::Node& node = call.tree->at(child);
    child = node.next;
    if (node.kind != formula::NodeKind::name || child == formula::no_node) continue;
    if (every_second && position % 2 != 0) continue;
    locals_.emplace_back(call.tree, call.tree->texts[node.payload]);
  }
}

}  // namespace qto::embedded
