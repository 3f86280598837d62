#include "qto/hosts/embedded/evaluate/walker.hpp"

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/build_array.hpp"
#include "qto/hosts/embedded/evaluate/operators.hpp"

namespace qto::embedded {

namespace {

/// Nodes inside one another, names followed included. A formula itself is capped by its parser;
/// this also holds for names that refer to names and keeps the machine's stack small.
constexpr int max_depth = 640;
/// Parts that one formula may evaluate.
constexpr int max_steps = 1 << 25;
/// Function values that call each other this deep count as recursive, and recursion that branches
/// can ask for any number of calls.
constexpr int shallow_calls = 4;
constexpr int max_recursive_calls = 1 << 18;

/// Counts one up while it lives.
class Deeper {
 public:
  explicit Deeper(int& depth) : depth_(depth) { ++depth_; }
  ~Deeper() { --depth_; }
  Deeper(const Deeper&) = delete;
  Deeper& operator=(const Deeper&) = delete;

 private:
  int& depth_;
};

bool has_elements(const Operand& operand, bool array) noexcept {
  if (operand.is_array()) return true;
  return array && operand.area() && !operand.area()->rect.is_cell();
}

Variant snapped(formula::Operator op, const ValueView& left, const ValueView& right,
                const DateSettings& dates) {
  const auto a = to_number(left, dates);
  const auto b = to_number(right, dates);
  if (!a || !b) return apply_binary(op, left, right, dates);
  return finite(snap_sum(*a, op == formula::Operator::add ? *b : -*b));
}

}  // namespace

Operand Walker::walk(const formula::SyntaxTree& tree, const Frame& frame, bool array, bool snap) {
  begin(frame);
  resolver_.begin(*frame.book);
  tree_ = &tree;
  locals_.clear();
  visible_locals_ = 0;
  chain_.clear();
  depth_ = 0;
  steps_ = 0;
  calls_inside_ = 0;
  recursive_calls_ = 0;
  too_deep_ = false;
  named_.clear();
  volatile_ = false;
  snap_ = snap;
  return evaluate(tree.root, array);
}

Operand Walker::evaluate(formula::NodeIndex index, bool array) {
  if (gave_up()) return ErrorValue::na;
  if (depth_ >= max_depth || steps_ >= max_steps) {
    too_deep_ = true;
    return ErrorValue::num;
  }
  ++steps_;
  const Deeper deeper(depth_);
  return evaluate_node(tree_->at(index), index, array);
}

Operand Walker::evaluate_node(const formula::Node& node, formula::NodeIndex index, bool array) {
  switch (node.kind) {
    case formula::NodeKind::number:
      return node.number;
    case formula::NodeKind::text:
      return std::string_view(tree_->texts[node.payload]);
    case formula::NodeKind::boolean:
      return node.payload != 0;
    case formula::NodeKind::error:
      return static_cast<ErrorValue>(node.payload);
    case formula::NodeKind::missing:
      return {};
    case formula::NodeKind::area:
      return resolver_.area(tree_->areas[node.payload], tree_->qualifiers[node.qualifier], frame_);
    case formula::NodeKind::name:
      return name(node);
    case formula::NodeKind::structured:
      return resolver_.structured(tree_->structured[node.payload],
                                  tree_->qualifiers[node.qualifier], frame_);
    case formula::NodeKind::array:
      return tree_->arrays[node.payload];
    case formula::NodeKind::unary:
      return unary(node, array);
    case formula::NodeKind::binary:
      return evaluate_chain(index, array);
    case formula::NodeKind::call:
      return call(node, array);
    case formula::NodeKind::invoke:
      return invoke(node, array);
  }
  return ErrorValue::value;
}

Operand Walker::evaluate_chain(formula::NodeIndex index, bool array) {
  const bool snap = snap_ && index == tree_->root;
  const std::size_t bottom = chain_.size();
  while (tree_->at(index).kind == formula::NodeKind::binary) {
    chain_.push_back(index);
    index = tree_->at(index).first_child;
  }
  Operand left = evaluate(index, array);
  while (chain_.size() > bottom) {
    const formula::Node& node = tree_->at(chain_.back());
    chain_.pop_back();
    const Operand right = evaluate(tree_->at(node.first_child).next, array);
    if (gave_up()) {
      chain_.resize(bottom);
      return ErrorValue::na;
    }
    const bool last = snap && chain_.size() == bottom;
    const bool sum = node.op == formula::Operator::add || node.op == formula::Operator::subtract;
    if (last && sum && !has_elements(left, array) && !has_elements(right, array))
      left = snapped(node.op, single(left), single(right), dates());
    else
      left = combine(node, left, right, array);
  }
  return left;
}

Operand Walker::combine(const formula::Node& node, const Operand& left, const Operand& right,
                        bool array) {
  if (!is_value_operator(node.op)) return join_references(node.op, left, right);
  if (has_elements(left, array) || has_elements(right, array)) {
    const Grid a(*this, left);
    const Grid b(*this, right);
    const auto [rows, columns] = combined_shape(a, b);
    return build_array(*this, rows, columns, [&](int row, int column) {
      return apply_binary(node.op, a.broadcast(row, column), b.broadcast(row, column), dates());
    });
  }
  return apply_binary(node.op, single(left), single(right), dates());
}

Operand Walker::unary(const formula::Node& node, bool array) {
  Operand operand = evaluate(node.first_child, array);
  if (node.op == formula::Operator::intersection_implicit) return intersect_implicitly(operand);
  if (node.op == formula::Operator::spill) {
    if (operand.error()) return operand;
    if (!operand.area() || !operand.area()->rect.is_cell()) return ErrorValue::ref;
    return spill_of(*operand.area());
  }
  // A reference with a plus before it stays a reference.
  if (node.op == formula::Operator::plus && operand.is_reference()) return operand;
  if (has_elements(operand, array)) {
    const Grid grid(*this, operand);
    return build_array(*this, grid.rows(), grid.columns(), [&](int row, int column) {
      return apply_unary(node.op, grid.at(row, column), dates());
    });
  }
  return apply_unary(node.op, single(operand), dates());
}

Operand Walker::call(const formula::Node& node, bool array) {
  const FunctionSpec* spec = functions_.find(tree_->texts[node.payload]);
  if (!spec) return call_value(node, array);
  if (node.child_count < spec->min_args || node.child_count > spec->max_args)
    return ErrorValue::value;
  if (spec->has(changes_always)) volatile_ = true;
  if (spec->body.lazy) {
    const std::size_t outside = scope();
    LazyCall lazy(*this, node, array);
    Operand result = spec->body.lazy(lazy);
    leave_scope(outside);
    return result;
  }
  constexpr int inline_arguments = 6;
  std::array<Operand, inline_arguments> few;
  std::vector<Operand> many;
  if (node.child_count > inline_arguments) many.resize(node.child_count);
  const std::span<Operand> arguments =
      many.empty() ? std::span<Operand>(few.data(), node.child_count) : std::span<Operand>(many);
  formula::NodeIndex child = node.first_child;
  for (std::size_t i = 0; i < arguments.size(); ++i, child = tree_->at(child).next) {
    const bool over_elements = array || spec->parameter(static_cast<int>(i)) == Parameter::array;
    arguments[i] = evaluate(child, over_elements);
    if (gave_up()) return ErrorValue::na;
  }
  return run_function(*spec, *this, arguments, array);
}

/// A call of what is no function of the tables: a name whose value is a function.
Operand Walker::call_value(const formula::Node& node, bool array) {
  const std::string& name = tree_->texts[node.payload];
  const Operand* known = local(name);
  return apply_to(known ? *known : defined_name(name, {}), node.first_child, array);
}

Operand Walker::invoke(const formula::Node& node, bool array) {
  const Operand function = evaluate(node.first_child, array);
  return apply_to(function, tree_->at(node.first_child).next, array);
}

Operand Walker::apply_to(const Operand& function, formula::NodeIndex first_argument, bool array) {
  if (function.error()) return function;
  std::vector<Operand> arguments;
  for (formula::NodeIndex child = first_argument; child != formula::no_node;
       child = tree_->at(child).next)
    arguments.push_back(evaluate(child, array));
  if (gave_up()) return ErrorValue::na;
  return apply(function, arguments);
}

Operand Walker::function_value(std::vector<std::string> parameters, formula::NodeIndex body,
                               bool array) const {
  auto function = make_ref<Lambda>();
  function->parameters = std::move(parameters);
  function->tree = tree_;
  function->body = body;
  function->frame = frame_;
  function->seen.assign(locals_.begin() + static_cast<std::ptrdiff_t>(visible_locals_),
                        locals_.end());
  function->array = array;
  return Variant(function);
}

Operand Walker::apply(const Operand& function, std::span<const Operand> arguments) {
  if (function.error()) return function;
  const auto lambda =
      function.value() ? ref_cast<Lambda>(function.value()->object()) : Ref<Lambda>();
  if (!lambda || lambda->parameters.size() != arguments.size()) return ErrorValue::value;
  if (calls_inside_ >= shallow_calls && ++recursive_calls_ > max_recursive_calls) {
    too_deep_ = true;
    return ErrorValue::num;
  }
  const Deeper inside(calls_inside_);
  const Frame outer_frame = std::exchange(frame_, lambda->frame);
  const formula::SyntaxTree* outer_tree = std::exchange(tree_, lambda->tree);
  const std::size_t outside = locals_.size();
  const std::size_t outer_locals = std::exchange(visible_locals_, outside);
  const bool outer_snap = std::exchange(snap_, false);
  locals_.insert(locals_.end(), lambda->seen.begin(), lambda->seen.end());
  for (std::size_t i = 0; i < arguments.size(); ++i) bind(lambda->parameters[i], arguments[i]);
  Operand result = evaluate(lambda->body, lambda->array);
  leave_scope(outside);
  frame_ = outer_frame;
  tree_ = outer_tree;
  visible_locals_ = outer_locals;
  snap_ = outer_snap;
  return result;
}

const Operand* Walker::local(std::string_view name) const {
  for (std::size_t i = locals_.size(); i > visible_locals_; --i)
    if (text::equal_fold(locals_[i - 1].name, name)) return &locals_[i - 1].value;
  return nullptr;
}

Operand Walker::name(const formula::Node& node) {
  const std::string& text = tree_->texts[node.payload];
  if (const Operand* value = local(text)) return *value;
  return defined_name(text, tree_->qualifiers[node.qualifier]);
}

Operand Walker::defined_name(std::string_view name, const formula::SheetQualifier& qualifier) {
  if (qualifier.broken) return ErrorValue::ref;
  Book* book = resolver_.book_of(qualifier, frame_);
  if (!book) return ErrorValue::ref;
  Sheet* sheet = book == frame_.book ? frame_.sheet : nullptr;
  if (!qualifier.sheet.empty()) {
    sheet = book->find_sheet(qualifier.sheet);
    if (!sheet) return ErrorValue::ref;
  }
  const DefinedName* found = book->names.resolve(name, sheet);
  if (!found || !found->refers_to) {
    if (const Table* table = book->find_table(name)) return resolver_.table_data(*table, *book);
    return ErrorValue::name;
  }
  if (!sheet && !book->sheets().empty()) sheet = book->sheets().front().get();
  return named_value(*found, {book, sheet, frame_.at});
}

/// Names of names of names would be evaluated over and over: each is once in a formula, unless its
/// value moves or could not be found out where it was asked for.
Operand Walker::named_value(const DefinedName& name, const Frame& frame) {
  const std::pair<const DefinedName*, const Sheet*> key(&name, frame.sheet);
  for (const auto& [known, value] : named_)
    if (known == key) return value;
  Operand value = in_frame(*name.refers_to, frame);
  if (!volatile_ && !too_deep_ && !gave_up()) named_.emplace_back(key, value);
  return value;
}

Operand Walker::in_frame(const CompiledFormula& formula, const Frame& frame) {
  const formula::SyntaxTree* tree = formula.tree();
  if (!tree || tree->root == formula::no_node) return ErrorValue::name;
  if (!frame.sheet) return ErrorValue::ref;
  const Frame outer_frame = std::exchange(frame_, frame);
  const formula::SyntaxTree* outer_tree = std::exchange(tree_, tree);
  const std::size_t outer_locals = std::exchange(visible_locals_, locals_.size());
  const bool outer_snap = std::exchange(snap_, false);
  // Names calculate as array formulas do.
  Operand result = evaluate(tree->root, true);
  frame_ = outer_frame;
  tree_ = outer_tree;
  visible_locals_ = outer_locals;
  snap_ = outer_snap;
  return result;
}

Operand Walker::reference_of(std::string_view text) {
  const auto formula = CompiledFormula::compile(text, frame_.at);
  const formula::SyntaxTree* tree = formula->tree();
  if (!tree || tree->root == formula::no_node) return ErrorValue::ref;
  const formula::NodeKind kind = tree->at(tree->root).kind;
  if (kind != formula::NodeKind::area && kind != formula::NodeKind::name &&
      kind != formula::NodeKind::structured && kind != formula::NodeKind::binary &&
      kind != formula::NodeKind::unary)
    return ErrorValue::ref;
  Operand result = in_frame(*formula, frame_);
  return result.is_reference() ? result : Operand(ErrorValue::ref);
}

void Walker::bind(std::string_view name, Operand value) {
  locals_.push_back({std::string(name), std::move(value)});
}

void Walker::leave_scope(std::size_t count) { locals_.resize(count); }

}  // namespace qto::embedded
