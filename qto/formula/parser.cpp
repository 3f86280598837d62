#include "qto/formula/parser.hpp"

#include <limits>
#include <optional>

#include "qto/automation/text.hpp"
#include "qto/formula/array_constant.hpp"
#include "qto/formula/function_name.hpp"
#include "qto/formula/lexer.hpp"
#include "qto/formula/qualifier.hpp"
#include "qto/formula/reference_text.hpp"
#include "qto/formula/structured_reference.hpp"
#include "qto/formula/token_values.hpp"
#include "qto/formula/tree_builder.hpp"

namespace qto::formula {
namespace {

struct BinaryOperator {
  Operator op;
  int rank;  // a higher rank binds tighter
};

std::optional<BinaryOperator> binary_operator(TokenKind kind) noexcept {
  switch (kind) {
    case TokenKind::equal:
      return BinaryOperator{Operator::equal, 1};
    case TokenKind::not_equal:
      return BinaryOperator{Operator::not_equal, 1};
    case TokenKind::less:
      return BinaryOperator{Operator::less, 1};
    case TokenKind::less_equal:
      return BinaryOperator{Operator::less_equal, 1};
    case TokenKind::greater:
      return BinaryOperator{Operator::greater, 1};
    case TokenKind::greater_equal:
      return BinaryOperator{Operator::greater_equal, 1};
    case TokenKind::join:
      return BinaryOperator{Operator::join, 2};
    case TokenKind::plus:
      return BinaryOperator{Operator::add, 3};
    case TokenKind::minus:
      return BinaryOperator{Operator::subtract, 3};
    case TokenKind::multiply:
      return BinaryOperator{Operator::multiply, 4};
    case TokenKind::divide:
      return BinaryOperator{Operator::divide, 4};
    case TokenKind::power:
      return BinaryOperator{Operator::power, 5};
    default:
      return std::nullopt;
  }
}

std::optional<Operator> prefix_operator(TokenKind kind) noexcept {
  if (kind == TokenKind::plus) return Operator::plus;
  if (kind == TokenKind::minus) return Operator::minus;
  if (kind == TokenKind::at) return Operator::intersection_implicit;
  return std::nullopt;
}

bool starts_reference(TokenKind kind) noexcept {
  switch (kind) {
    case TokenKind::area:
    case TokenKind::qualifier:
    case TokenKind::name:
    case TokenKind::function:
    case TokenKind::structured:
    case TokenKind::open:
      return true;
    default:
      return false;
  }
}

/// Recursive descent; operators of one rank are chained by loops. After a failure the current token
/// is the end, so every loop ends by itself.
class FormulaParser {
 public:
  FormulaParser(std::string_view text, CellPos base) : lexer_(text), base_(base) { advance(); }

  ParsedFormula parse() {
    ParsedFormula parsed;
    const NodeIndex root = expression(1);
    if (token_.kind != TokenKind::end) fail_unexpected();
    parsed.why_broken = std::move(failure_);
    if (parsed.why_broken.empty()) parsed.tree = tree_.finish(root);
    return parsed;
  }

 private:
  void advance() { token_ = lexer_.next(); }

  NodeIndex fail(std::string why) {
    if (failure_.empty()) failure_ = std::move(why);
    token_ = Token{};
    // Callers link what they get, so even a failed part is a node.
    return tree_.leaf(NodeKind::missing);
  }

  NodeIndex fail_unexpected() {
    if (!failure_.empty()) return fail("");
    if (token_.kind == TokenKind::end) return fail("the formula ends too early");
    std::string_view text = lexer_.text(token_);
    return fail("unexpected \"" + std::string(text.substr(0, text.find_first_of("\r\n"))) +
                "\" at character " + std::to_string(token_.begin + 1));
  }

  bool expect(TokenKind kind) {
    if (token_.kind != kind) return fail_unexpected(), false;
    advance();
    return true;
  }

  NodeIndex expression(int lowest_rank) {
    NodeIndex left = signed_operand();
    while (const auto found = binary_operator(token_.kind)) {
      if (found->rank < lowest_rank) break;
      advance();
      left = tree_.binary(found->op, left, expression(found->rank + 1));
    }
    return left;
  }

  /// Signs and "@" before an operand, "%" after it. Signs bind tighter than "^".
  NodeIndex signed_operand() {
    std::vector<Operator> prefixes;
    while (const auto prefix = prefix_operator(token_.kind)) {
      prefixes.push_back(*prefix);
      advance();
    }
    NodeIndex node = unions_allowed_ ? union_of_references() : intersection();
    if (prefixes.size() > max_nesting) return fail_nesting();
    while (!prefixes.empty()) {
      node = tree_.unary(prefixes.back(), node);
      prefixes.pop_back();
    }
    return with_marks(node, TokenKind::percent, Operator::percent);
  }

  NodeIndex with_marks(NodeIndex node, TokenKind mark, Operator op) {
    for (int marks = 0; token_.kind == mark; ++marks) {
      if (marks == max_nesting) return fail_nesting();
      node = tree_.unary(op, node);
      advance();
    }
    return node;
  }

  NodeIndex union_of_references() {
    NodeIndex left = intersection();
    while (token_.kind == TokenKind::comma) {
      advance();
      left = tree_.binary(Operator::unite, left, intersection());
    }
    return left;
  }

  NodeIndex intersection() {
    NodeIndex left = range();
    while (token_.blank_before && starts_reference(token_.kind))
      left = tree_.binary(Operator::intersect, left, range());
    return left;
  }

  NodeIndex range() {
    NodeIndex left = with_marks(primary(), TokenKind::hash, Operator::spill);
    while (token_.kind == TokenKind::colon) {
      advance();
      left = tree_.binary(Operator::range, left,
                          with_marks(primary(), TokenKind::hash, Operator::spill));
    }
    return left;
  }

  NodeIndex primary() {
    switch (token_.kind) {
      case TokenKind::number: {
        const double value = number_value(lexer_.text(token_));
        advance();
        return tree_.number(value);
      }
      case TokenKind::text: {
        const NodeIndex node = tree_.text(unquote(lexer_.text(token_)));
        advance();
        return node;
      }
      case TokenKind::qualifier:
        return qualified();
      case TokenKind::open:
        return parenthesised();
      case TokenKind::open_brace:
        return array_constant();
      default:
        return reference(0);
    }
  }

  NodeIndex qualified() {
    const SheetQualifier qualifier = parse_qualifier(lexer_.text(token_));
    advance();
    if (token_.blank_before) return fail_unexpected();
    return reference(qualifier.present() ? tree_.qualifier(qualifier) : 0);
  }

  /// What may stand behind a qualifier, or without one.
  NodeIndex reference(std::uint32_t qualifier) {
    const std::string_view text = lexer_.text(token_);
    NodeIndex node = no_node;
    switch (token_.kind) {
      case TokenKind::area:
        node = tree_.area(relative_area(lexer_.area(), base_), qualifier);
        break;
      case TokenKind::error:
        node = tree_.error(error_value(text));
        break;
      case TokenKind::name:
        node = name(text, qualifier);
        break;
      case TokenKind::structured: {
        auto ref = parse_structured(text);
        if (!ref) return fail_unexpected();
        node = tree_.structured(std::move(*ref), qualifier);
        break;
      }
      case TokenKind::function:
        return call(qualifier);
      default:
        return fail_unexpected();
    }
    advance();
    return node;
  }

  NodeIndex name(std::string_view text, std::uint32_t qualifier) {
    if (text.front() == '\'') return tree_.name(unquote(text), qualifier);
    if (qualifier == 0)
      if (const auto value = boolean_value(text)) return tree_.leaf(NodeKind::boolean, *value);
    return tree_.name(without_prefix(text), qualifier);
  }

  NodeIndex call(std::uint32_t qualifier) {
    const std::string written(lexer_.text(token_));
    const std::string function = text::upper_ascii(without_prefix(written));
    const NodeIndex call = tree_.call(function, qualifier);
    advance();
    if (!list_of_arguments(call, no_node)) return fail_nesting();
    return invocations(finished_call(call, written, function));
  }

  /// Calls of what a call gives: LAMBDA(x,x+1)(3).
  NodeIndex invocations(NodeIndex function) {
    for (int calls = 0; token_.kind == TokenKind::open && !token_.blank_before; ++calls) {
      if (calls == max_nesting) return fail_nesting();
      const NodeIndex invoke = tree_.invoke(function);
      if (!list_of_arguments(invoke, function)) return fail_nesting();
      function = invoke;
    }
    return function;
  }

  /// The parenthesis and what it holds.
  bool list_of_arguments(NodeIndex call, NodeIndex last) {
    if (!enter()) return false;
    advance();
    const bool unions = unions_allowed_;
    unions_allowed_ = false;
    arguments(call, last);
    unions_allowed_ = unions;
    expect(TokenKind::close);
    --depth_;
    return true;
  }

  void arguments(NodeIndex call, NodeIndex last) {
    if (token_.kind == TokenKind::close) return;
    for (;;) {
      const bool missing = token_.kind == TokenKind::comma || token_.kind == TokenKind::close;
      const NodeIndex argument = missing ? tree_.leaf(NodeKind::missing) : expression(1);
      if (tree_.at(call).child_count == std::numeric_limits<std::uint16_t>::max()) {
        fail("too many arguments");
        return;
      }
      tree_.add_argument(call, last, argument);
      last = argument;
      if (token_.kind != TokenKind::comma) return;
      advance();
    }
  }

  /// Marks that files write as functions, and TRUE(), FALSE().
  NodeIndex finished_call(NodeIndex call, std::string_view written, std::string_view function) {
    const Node& node = tree_.at(call);
    const MarkFunction mark = mark_function(written);
    if (mark != MarkFunction::none && node.child_count == 1)
      return tree_.unary(
          mark == MarkFunction::single ? Operator::intersection_implicit : Operator::spill,
          node.first_child);
    if (node.child_count == 0 && node.qualifier == 0)
      if (const auto value = boolean_value(function)) return tree_.leaf(NodeKind::boolean, *value);
    return call;
  }

  NodeIndex parenthesised() {
    if (!enter()) return fail_nesting();
    advance();
    const bool unions = unions_allowed_;
    unions_allowed_ = true;
    const NodeIndex node = expression(1);
    unions_allowed_ = unions;
    expect(TokenKind::close);
    --depth_;
    return node;
  }

  NodeIndex array_constant() {
    std::string problem;
    Ref<const VariantArray> values = read_array_constant(lexer_, problem);
    if (!values) return fail(std::move(problem));
    advance();
    return tree_.array(std::move(values));
  }

  bool enter() {
    if (depth_ == max_nesting) return false;
    ++depth_;
    return true;
  }

  NodeIndex fail_nesting() {
    return fail("nested deeper than " + std::to_string(max_nesting) + " levels");
  }

  Lexer lexer_;
  CellPos base_;
  Token token_;
  TreeBuilder tree_;
  std::string failure_;
  int depth_ = 0;
  bool unions_allowed_ = true;
};

}  // namespace

ParsedFormula parse_formula(std::string_view text, CellPos base) {
  return FormulaParser(text, base).parse();
}

}  // namespace qto::formula
