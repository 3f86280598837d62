#include "qto/formula/node_text.hpp"

#include <charconv>
#include <cmath>
#include <vector>

#include "qto/formula/reference_text.hpp"

namespace qto::formula {
namespace {

std::string_view operator_text(Operator op) {
  static constexpr std::string_view texts[] = {"",  "+",  "-", "%",  "@", "#", "+",
                                               "-", "*",  "/", "^",  "&", "=", "<>",
                                               "<", "<=", ">", ">=", ":", " ", ","};
  return texts[static_cast<std::size_t>(op)];
}

void append_number(std::string& out, double number) {
  // A number token beyond the range of doubles reads as infinite.
  if (std::isinf(number)) return void(out += "1E+999");
  char digits[32];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void append_quoted(std::string& out, std::string_view text, char quote) {
  out.push_back(quote);
  for (const char c : text) out.append(c == quote ? 2 : 1, c);
  out.push_back(quote);
}

void append_value(std::string& out, const Variant& value) {
  if (const auto* number = value.get_if<double>())
    append_number(out, *number);
  else if (const auto* error = value.get_if<ErrorValue>())
    out += error_text(*error);
  else if (const auto* flag = value.get_if<bool>())
    out += *flag ? "TRUE" : "FALSE";
  else
    append_quoted(out, value.text(), '"');
}

void append_array(std::string& out, const VariantArray& array) {
  out.push_back('{');
  for (int row = 1; row <= array.rows(); ++row)
    for (int column = 1; column <= array.columns(); ++column) {
      if (column > 1)
        out.push_back(',');
      else if (row > 1)
        out.push_back(';');
      append_value(out, array.at(row, column));
    }
  out.push_back('}');
}

/// A column's name with what must not stand plainly between brackets escaped.
void append_column_name(std::string& out, std::string_view column) {
  out.push_back('[');
  for (const char c : column) {
    if (std::string_view("[]#'@").find(c) != std::string_view::npos) out.push_back('\'');
    out.push_back(c);
  }
  out.push_back(']');
}

void append_structured(std::string& out, const StructuredRef& ref) {
  static constexpr std::string_view items[] = {"[#All]", "[#Data]", "[#Headers]", "[#Totals]",
                                               "[#This Row]"};
  out += ref.table;
  out.push_back('[');
  const std::size_t first = out.size();
  const auto separate = [&] {
    if (out.size() > first) out.push_back(',');
  };
  for (std::size_t i = 0; i < std::size(items); ++i)
    if (ref.items & (1u << i)) {
      separate();
      out += items[i];
    }
  if (!ref.first_column.empty()) {
    separate();
    append_column_name(out, ref.first_column);
    if (!ref.last_column.empty()) {
      out.push_back(':');
      append_column_name(out, ref.last_column);
    }
  }
  out.push_back(']');
}

/// The name of a workbook's link as it stands in a cell's text, or of the linked item.
void append_name(std::string& out, std::string_view name, const SheetQualifier& qualifier) {
  if (qualifier.book.find('|') != std::string::npos && needs_quotes(name))
    append_quoted(out, name, '\'');
  else
    out += name;
}

class Writer {
 public:
  Writer(std::string& out, const SyntaxTree& tree, CellPos at) : out_(out), tree_(tree), at_(at) {}

  void write(NodeIndex index) {
    const Node& node = tree_.at(index);
    switch (node.kind) {
      case NodeKind::unary:
        return write_unary(node);
      case NodeKind::binary:
        return write_chain(index);
      case NodeKind::call:
        append_qualifier(out_, tree_.qualifiers[node.qualifier]);
        out_ += tree_.texts[node.payload];
        return write_arguments(node.first_child);
      case NodeKind::invoke:
        write(node.first_child);
        return write_arguments(tree_.at(node.first_child).next);
      default:
        return write_leaf(node);
    }
  }

 private:
  void write_arguments(NodeIndex argument) {
    out_.push_back('(');
    for (bool first = true; argument != no_node; argument = tree_.at(argument).next) {
      if (!std::exchange(first, false)) out_.push_back(',');
      write(argument);
    }
    out_.push_back(')');
  }

  /// Prefixes may stand one before another without end, so they are no recursion.
  void write_unary(const Node& top) {
    std::vector<Operator> marks;
    const Node* node = &top;
    NodeIndex operand = no_node;
    for (;; node = &tree_.at(operand)) {
      operand = node->first_child;
      const bool behind = node->op == Operator::percent || node->op == Operator::spill;
      if (behind) {
        marks.push_back(node->op);
      } else {
        out_ += operator_text(node->op);
      }
      out_.push_back('(');
      if (!behind) marks.push_back(Operator::none);
      if (tree_.at(operand).kind != NodeKind::unary) break;
    }
    write(operand);
    for (; !marks.empty(); marks.pop_back()) {
      out_.push_back(')');
      out_ += operator_text(marks.back());
    }
  }

  /// Every operator is closed in, so that no rank has to be minded; a chain to the left is a loop.
  void write_chain(NodeIndex index) {
    std::vector<const Node*> chain;
    for (; tree_.at(index).kind == NodeKind::binary; index = tree_.at(index).first_child) {
      chain.push_back(&tree_.at(index));
      out_.push_back('(');
    }
    write(index);
    for (; !chain.empty(); chain.pop_back()) {
      out_ += operator_text(chain.back()->op);
      write(tree_.at(chain.back()->first_child).next);
      out_.push_back(')');
    }
  }

  void write_leaf(const Node& node) {
    const SheetQualifier& qualifier = tree_.qualifiers[node.qualifier];
    append_qualifier(out_, qualifier);
    switch (node.kind) {
      case NodeKind::number:
        return append_number(out_, node.number);
      case NodeKind::text:
        return append_quoted(out_, tree_.texts[node.payload], '"');
      case NodeKind::boolean:
        return void(out_ += node.payload ? "TRUE" : "FALSE");
      case NodeKind::error:
        return void(out_ += error_text(static_cast<ErrorValue>(node.payload)));
      case NodeKind::area:
        return append_area(out_, tree_.areas[node.payload], at_);
      case NodeKind::name:
        return append_name(out_, tree_.texts[node.payload], qualifier);
      case NodeKind::structured:
        return append_structured(out_, tree_.structured[node.payload]);
      case NodeKind::array:
        return append_array(out_, *tree_.arrays[node.payload]);
      default:
        return;
    }
  }

  std::string& out_;
  const SyntaxTree& tree_;
  const CellPos at_;
};

}  // namespace

void append_qualifier(std::string& out, const SheetQualifier& qualifier) {
  if (!qualifier.present()) return;
  if (qualifier.book.find('|') != std::string::npos) {
    out += qualifier.book;
    out.push_back('!');
    return;
  }
  const std::string book = qualifier.external ? std::to_string(qualifier.external) : qualifier.book;
  const bool sheetless = qualifier.sheet.empty() && !qualifier.broken && !qualifier.external;
  std::string text = qualifier.folder;
  if (!book.empty()) text += sheetless ? book : '[' + book + ']';
  std::string sheets = qualifier.broken ? "#REF" : qualifier.sheet;
  if (!qualifier.last_sheet.empty()) sheets += ':' + qualifier.last_sheet;
  text += sheets;
  // Of these the file format's own forms stand without apostrophes.
  if (qualifier.broken && qualifier.folder.empty())
    out += text;
  else
    append_quoted(out, text, '\'');
  out.push_back('!');
}

void append_node(std::string& out, const SyntaxTree& tree, NodeIndex index, CellPos at) {
  Writer(out, tree, at).write(index);
}

}  // namespace qto::formula
