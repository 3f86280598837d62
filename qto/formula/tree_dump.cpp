#include "qto/formula/tree_dump.hpp"

#include <charconv>

#include "qto/formula/reference_text.hpp"

namespace qto::formula {
namespace {

std::string_view operator_text(Operator op) {
  static constexpr std::string_view texts[] = {"",  "+",  "-", "%",  "@", "#",         "+",
                                               "-", "*",  "/", "^",  "&", "=",         "<>",
                                               "<", "<=", ">", ">=", ":", "intersect", "union"};
  return texts[static_cast<std::size_t>(op)];
}

std::string number_text(double number) {
  char digits[32];
  const auto [end, failure] = std::to_chars(digits, digits + sizeof digits, number);
  return std::string(digits, end);
}

std::string value_text(const Variant& value) {
  if (const auto* number = value.get_if<double>()) return number_text(*number);
  if (const auto* error = value.get_if<ErrorValue>()) return std::string(error_text(*error));
  if (const auto* flag = value.get_if<bool>()) return *flag ? "TRUE" : "FALSE";
  return '"' + value.text() + '"';
}

std::string array_text(const VariantArray& array) {
  std::string out = "{";
  for (int row = 1; row <= array.rows(); ++row)
    for (int column = 1; column <= array.columns(); ++column) {
      if (column > 1)
        out += ',';
      else if (row > 1)
        out += ';';
      out += value_text(array.at(row, column));
    }
  return out + '}';
}

std::string qualifier_text(const SheetQualifier& qualifier) {
  if (!qualifier.present()) return "";
  std::string out;
  if (qualifier.external) out += '[' + std::to_string(qualifier.external) + ']';
  if (!qualifier.book.empty()) out += '[' + qualifier.book + ']';
  out += qualifier.broken ? "#REF" : qualifier.sheet;
  if (!qualifier.last_sheet.empty()) out += ':' + qualifier.last_sheet;
  return out + '!';
}

std::string structured_text(const StructuredRef& ref) {
  std::string out = ref.table + '[';
  static constexpr std::string_view items[] = {"#All", "#Data", "#Headers", "#Totals", "#This Row"};
  for (std::size_t i = 0; i < std::size(items); ++i)
    if (ref.items & (1u << i)) out.append(items[i]).append(";");
  out += ref.first_column;
  if (!ref.last_column.empty()) out += ':' + ref.last_column;
  return out + ']';
}

std::string leaf_text(const SyntaxTree& tree, const Node& node, CellPos at) {
  std::string out = qualifier_text(tree.qualifiers[node.qualifier]);
  switch (node.kind) {
    case NodeKind::number:
      return number_text(node.number);
    case NodeKind::text:
      return '"' + tree.texts[node.payload] + '"';
    case NodeKind::boolean:
      return node.payload ? "TRUE" : "FALSE";
    case NodeKind::error:
      return std::string(error_text(static_cast<ErrorValue>(node.payload)));
    case NodeKind::missing:
      return "_";
    case NodeKind::area:
      append_area(out, tree.areas[node.payload], at);
      return out;
    case NodeKind::structured:
      return out + structured_text(tree.structured[node.payload]);
    case NodeKind::array:
      return array_text(*tree.arrays[node.payload]);
    case NodeKind::name:
    case NodeKind::call:
      return out + tree.texts[node.payload];
    case NodeKind::unary:
    case NodeKind::binary:
      return std::string(operator_text(node.op));
    case NodeKind::invoke:
      return "invoke";
  }
  return out;
}

}  // namespace

std::string dump_tree(const SyntaxTree& tree, CellPos at) {
  std::string out;
  // Nodes whose parenthesis is open, each with the child that comes next.
  std::vector<NodeIndex> next_children;
  const auto enter = [&](NodeIndex index) {
    const Node& node = tree.at(index);
    const bool inner = node.kind == NodeKind::unary || node.kind == NodeKind::binary ||
                       node.kind == NodeKind::call || node.kind == NodeKind::invoke;
    if (inner) out += '(';
    out += leaf_text(tree, node, at);
    if (inner) next_children.push_back(node.first_child);
  };
  enter(tree.root);
  while (!next_children.empty()) {
    const NodeIndex child = next_children.back();
    if (child == no_node) {
      out += ')';
      next_children.pop_back();
      continue;
    }
    next_children.back() = tree.at(child).next;
    out += ' ';
    enter(child);
  }
  return out;
}

}  // namespace qto::formula
