#include <utility>

#include "qto/hosts/embedded/evaluate/build_array.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/evaluate/compare.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// A blank argument in the place of a result shows 0.
Operand or_zero(Operand operand) {
  return operand.is_missing() ? Operand(0.0) : std::move(operand);
}

/// The elements of several operands at one place; what a function of single values works on.
class Elements {
 public:
  Elements(Context& context, const std::vector<Operand>& operands) {
    for (const Operand& operand : operands) {
      grids_.emplace_back(context, operand);
      rows_ = std::max(rows_, grids_.back().rows());
      columns_ = std::max(columns_, grids_.back().columns());
    }
  }
  template <class Choose>
  Operand build(Context& context, Choose&& choose) const {
    return build_array(context, rows_, columns_, [&](int row, int column) {
      const auto at = [&](std::size_t i) { return grids_[i].broadcast(row, column); };
      const ValueView value = choose(at);
      return value.is_empty() ? Variant(0.0) : value.to_variant();
    });
  }
  std::size_t count() const noexcept { return grids_.size(); }

 private:
  std::vector<Grid> grids_;
  int rows_ = 1;
  int columns_ = 1;
};

std::vector<Operand> evaluate_from(LazyCall& call, Operand first) {
  std::vector<Operand> operands{std::move(first)};
  for (int i = 1; i < call.count(); ++i) operands.push_back(or_zero(call.evaluate(i)));
  return operands;
}

Operand fn_if(LazyCall& call) {
  const Operand condition = call.evaluate(0);
  if (call.is_many(condition)) {
    const auto operands = evaluate_from(call, condition);
    const Elements elements(call.context(), operands);
    return elements.build(call.context(), [&](auto& at) -> ValueView {
      const auto flag = to_logical(at(0));
      if (!flag) return flag.error();
      const std::size_t branch = *flag ? 1 : 2;
      return branch < elements.count() ? at(branch) : ValueView(false);
    });
  }
  const auto flag = to_logical(call.context().single(condition));
  if (!flag) return flag.error();
  if (*flag) return or_zero(call.evaluate(1));
  return call.count() > 2 ? or_zero(call.evaluate(2)) : Operand(false);
}

template <class IsCaught>
Operand catch_error(LazyCall& call, IsCaught&& caught) {
  const Operand value = call.evaluate(0);
  if (call.is_many(value)) {
    const auto operands = evaluate_from(call, value);
    return Elements(call.context(), operands).build(call.context(), [&](auto& at) -> ValueView {
      return caught(at(0)) ? at(1) : at(0);
    });
  }
  const ValueView single = call.context().single(value);
  if (call.context().gave_up()) return ErrorValue::na;
  return caught(single) ? or_zero(call.evaluate(1)) : Operand(single.to_variant());
}

Operand fn_iferror(LazyCall& call) {
  return catch_error(call, [](const ValueView& value) { return value.is_error(); });
}

Operand fn_ifna(LazyCall& call) {
  return catch_error(call, [](const ValueView& value) {
    return value.is_error() && value.error() == ErrorValue::na;
  });
}

Operand ifs_of_elements(LazyCall& call, const std::vector<Operand>& operands) {
  const Elements elements(call.context(), operands);
  return elements.build(call.context(), [&](auto& at) -> ValueView {
    for (std::size_t i = 0; i + 1 < elements.count(); i += 2) {
      const auto flag = to_logical(at(i));
      if (!flag) return flag.error();
      if (*flag) return at(i + 1);
    }
    return ErrorValue::na;
  });
}

Operand fn_ifs(LazyCall& call) {
  if (call.count() % 2 != 0) return ErrorValue::value;
  for (int i = 0; i < call.count(); i += 2) {
    const Operand condition = call.evaluate(i);
    if (call.is_many(condition))
      return ifs_of_elements(call, evaluate_from(call, call.evaluate(0)));
    const auto flag = to_logical(call.context().single(condition));
    if (!flag) return flag.error();
    if (*flag) return or_zero(call.evaluate(i + 1));
  }
  return ErrorValue::na;
}

/// SWITCH compares types too: the text "1" is not the number 1.
bool same_value(const ValueView& a, const ValueView& b) {
  return a.is_error() || b.is_error() ? false : equal_values(a, b);
}

Operand switch_of_elements(LazyCall& call, const Operand& subject) {
  const auto operands = evaluate_from(call, subject);
  const Elements elements(call.context(), operands);
  return elements.build(call.context(), [&](auto& at) -> ValueView {
    const ValueView value = at(0);
    if (value.is_error()) return value;
    std::size_t i = 1;
    for (; i + 1 < elements.count(); i += 2)
      if (same_value(value, at(i))) return at(i + 1);
    return i < elements.count() ? at(i) : ValueView(ErrorValue::na);
  });
}

Operand fn_switch(LazyCall& call) {
  const Operand subject = call.evaluate(0);
  if (call.is_many(subject)) return switch_of_elements(call, subject);
  const ValueView value = call.context().single(subject);
  if (value.is_error()) return value.error();
  int i = 1;
  for (; i + 1 < call.count(); i += 2) {
    const Operand candidate = call.evaluate(i);
    const ValueView other = call.context().single(candidate);
    if (call.context().gave_up()) return ErrorValue::na;
    if (other.is_error()) return other.error();
    if (same_value(value, other)) return or_zero(call.evaluate(i + 1));
  }
  return i < call.count() ? or_zero(call.evaluate(i)) : Operand(ErrorValue::na);
}

Operand fn_let(LazyCall& call) {
  if (call.count() % 2 == 0) return ErrorValue::value;
  for (int i = 0; i + 1 < call.count(); i += 2) {
    const std::string_view name = call.name(i);
    if (name.empty()) return ErrorValue::name;
    call.bind(name, call.evaluate(i + 1));
  }
  return or_zero(call.evaluate(call.count() - 1));
}

/// Counts the true and false values of the arguments as AND, OR and XOR see them.
struct Truths {
  std::int64_t yes = 0;
  std::int64_t no = 0;
  std::optional<ErrorValue> error;
  bool unreadable = false;  ///< a text that is no truth value; errors come before it

  void take(const ValueView& value, bool single) {
    if (value.is_error()) {
      if (!error) error = value.error();
      return;
    }
    if (!single && (value.is_text() || value.is_empty())) return;
    const auto flag = to_logical(value);
    if (!flag) {
      unreadable = true;
    } else {
      ++(*flag ? yes : no);
    }
  }
};

Truths truths_of(Call& call) {
  Truths truths;
  for (const Operand& argument : call.from(0)) {
    if (truths.error) break;
    if (!argument.is_reference() && !argument.is_array()) {
      truths.take(call.context().single(argument), true);
      continue;
    }
    std::vector<Operand> blocks(argument.areas().begin(), argument.areas().end());
    if (blocks.empty()) blocks.push_back(argument);
    for (const Operand& block : blocks)
      Grid(call.context(), block).for_each([&](int, int, const ValueView& value) {
        truths.take(value, false);
        return !truths.error;
      });
  }
  if (!truths.error && (truths.unreadable || truths.yes + truths.no == 0))
    truths.error = ErrorValue::value;
  return truths;
}

Operand fn_and(Call& call) {
  const Truths truths = truths_of(call);
  return truths.error ? Operand(*truths.error) : Operand(truths.no == 0);
}

Operand fn_or(Call& call) {
  const Truths truths = truths_of(call);
  return truths.error ? Operand(*truths.error) : Operand(truths.yes > 0);
}

Operand fn_xor(Call& call) {
  const Truths truths = truths_of(call);
  return truths.error ? Operand(*truths.error) : Operand(truths.yes % 2 == 1);
}

Operand fn_not(Call& call) { return !call.logical(0); }
Operand fn_true(Call&) { return true; }
Operand fn_false(Call&) { return false; }

// clang-format off
constexpr FunctionSpec logical_table[] = {
    {"AND", 1, any_count, takes_spans, {values}, fn_and, "logical1, ...",
     "true when all arguments are true", "=AND(1>0,TRUE)", "TRUE"},
    {"FALSE", 0, 0, plain, {}, fn_false, "", "the value FALSE", "=FALSE()", "FALSE"},
    {"IF", 2, 3, gives_reference, {any}, fn_if, "condition, value_if_true, [value_if_false]",
     "one of two values, as the condition is true or false", "=IF(2>1,\"yes\",1/0)", "yes"},
    {"IFERROR", 2, 2, plain, {any}, fn_iferror, "value, value_if_error",
     "the value, or another one where it is an error", "=IFERROR(1/0,\"none\")", "none"},
    {"IFNA", 2, 2, plain, {any}, fn_ifna, "value, value_if_na",
     "the value, or another one where it is #N/A", "=IFNA(NA(),7)", "7"},
    {"IFS", 2, any_count, gives_reference, {any}, fn_ifs, "condition1, value1, ...",
     "the value behind the first condition that is true", "=IFS(FALSE,1,TRUE,2)", "2"},
    {"LET", 3, any_count, gives_reference, {any}, fn_let, "name1, value1, ..., result",
     "a result calculated with names for values", "=LET(x,3,y,x+1,x*y)", "12"},
    {"NOT", 1, 1, plain, {logical}, fn_not, "logical", "the opposite truth value", "=NOT(1>2)",
     "TRUE"},
    {"OR", 1, any_count, takes_spans, {values}, fn_or, "logical1, ...",
     "true when any argument is true", "=OR(FALSE,2)", "TRUE"},
    {"SWITCH", 3, any_count, gives_reference, {any}, fn_switch,
     "expression, value1, result1, ..., [otherwise]",
     "the result behind the first value that equals the expression",
     "=SWITCH(2,1,\"a\",2,\"b\",\"c\")", "b"},
    {"TRUE", 0, 0, plain, {}, fn_true, "", "the value TRUE", "=TRUE()", "TRUE"},
    {"XOR", 1, any_count, takes_spans, {values}, fn_xor, "logical1, ...",
     "true when an odd number of arguments is true", "=XOR(TRUE,TRUE,TRUE)", "TRUE"},
};
// clang-format on
static_assert(well_formed(logical_table));

}  // namespace

std::span<const FunctionSpec> logical_functions() { return logical_table; }

}  // namespace qto::embedded::functions
