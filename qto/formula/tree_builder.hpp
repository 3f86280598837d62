#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>

#include "qto/formula/syntax_tree.hpp"

namespace qto::formula {

/// Puts a syntax tree together, node by node; equal texts and qualifiers are stored once.
class TreeBuilder {
 public:
  NodeIndex number(double value);
  NodeIndex leaf(NodeKind kind, std::uint32_t payload = 0, std::uint32_t qualifier = 0);
  NodeIndex error(ErrorValue value);
  NodeIndex area(const AreaRef& area, std::uint32_t qualifier);
  NodeIndex name(std::string_view name, std::uint32_t qualifier);
  NodeIndex text(std::string_view text);
  NodeIndex structured(StructuredRef ref, std::uint32_t qualifier);
  NodeIndex array(Ref<const VariantArray> values);
  NodeIndex unary(Operator op, NodeIndex operand);
  NodeIndex binary(Operator op, NodeIndex left, NodeIndex right);
  NodeIndex call(std::string_view function, std::uint32_t qualifier);
  NodeIndex invoke(NodeIndex function);
  /// Appends an argument to a call; `last` is the argument before it, or no_node.
  void add_argument(NodeIndex call, NodeIndex last, NodeIndex argument);
  std::uint32_t qualifier(const SheetQualifier& qualifier);

  const Node& at(NodeIndex index) const noexcept { return tree_.nodes[index]; }
  SyntaxTree finish(NodeIndex root);

 private:
  std::uint32_t intern(std::string_view text);

  SyntaxTree tree_;
  std::unordered_map<std::string, std::uint32_t> text_numbers_;
};

}  // namespace qto::formula
