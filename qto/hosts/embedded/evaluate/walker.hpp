#pragma once

#include <string>
#include <vector>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/evaluate/lambda.hpp"
#include "qto/hosts/embedded/evaluate/references.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"

namespace qto::embedded {

/// Walks syntax trees. Recursion follows true nesting only: chains of binary operators are folded
/// in a loop, and names that refer to names count towards the same limit.
class Walker : public Context {
 public:
  Walker(Environment& environment, const FunctionTable& functions)
      : Context(environment), functions_(functions), resolver_(environment) {}

  /// Starts afresh and gives what the tree evaluates to, references kept.
  Operand walk(const formula::SyntaxTree& tree, const Frame& frame, bool array, bool snap);
  bool was_volatile() const noexcept { return volatile_; }
  bool is_closed(const Book& book) const noexcept { return resolver_.is_closed(book); }

  /// `array`: operations run over all elements of references.
  Operand evaluate(formula::NodeIndex index, bool array);
  Operand reference_of(std::string_view text) override;
  Operand apply(const Operand& function, std::span<const Operand> arguments) override;
  /// The function value with these parameters and that body, as seen from here.
  Operand function_value(std::vector<std::string> parameters, formula::NodeIndex body,
                         bool array) const;

  const formula::SyntaxTree& tree() const noexcept { return *tree_; }
  /// Makes a name stand for a value until leave_scope() is given the count it had before.
  void bind(std::string_view name, Operand value);
  std::size_t scope() const noexcept { return locals_.size(); }
  void leave_scope(std::size_t count);

 private:
  Operand evaluate_node(const formula::Node& node, formula::NodeIndex index, bool array);
  Operand evaluate_chain(formula::NodeIndex index, bool array);
  Operand combine(const formula::Node& node, const Operand& left, const Operand& right, bool array);
  Operand unary(const formula::Node& node, bool array);
  Operand call(const formula::Node& node, bool array);
  Operand call_value(const formula::Node& node, bool array);
  Operand invoke(const formula::Node& node, bool array);
  Operand apply_to(const Operand& function, formula::NodeIndex first_argument, bool array);
  const Operand* local(std::string_view name) const;
  Operand name(const formula::Node& node);
  Operand defined_name(std::string_view name, const formula::SheetQualifier& qualifier);
  Operand named_value(const DefinedName& name, const Frame& frame);
  Operand in_frame(const CompiledFormula& formula, const Frame& frame);

  const FunctionTable& functions_;
  ReferenceResolver resolver_;
  const formula::SyntaxTree* tree_ = nullptr;
  std::vector<LocalName> locals_;
  std::size_t visible_locals_ = 0;  ///< locals below this belong to the formula around a name
  std::vector<formula::NodeIndex> chain_;
  int depth_ = 0;
  int steps_ = 0;
  int calls_inside_ = 0;
  int recursive_calls_ = 0;
  bool too_deep_ = false;
  /// The names that the formula under way has used, with the sheet they were seen from.
  std::vector<std::pair<std::pair<const DefinedName*, const Sheet*>, Operand>> named_;
  bool volatile_ = false;
  bool snap_ = false;
};

}  // namespace qto::embedded
