#include "qto/hosts/embedded/evaluate/call.hpp"

#include <cmath>
#include <optional>

#include "qto/hosts/embedded/evaluate/build_array.hpp"
#include "qto/hosts/embedded/evaluate/operators.hpp"

namespace qto::embedded {

namespace {

constexpr bool is_strict(Parameter kind) {
  return kind == Parameter::strict_number || kind == Parameter::strict_value;
}

constexpr bool wants_single_value(Parameter kind) { return kind <= Parameter::any; }

/// Makes a single value what its parameter wants; gives the error that ends the call.
std::optional<ErrorValue> coerce(Parameter kind, Operand& operand, Context& context) {
  if (operand.is_missing() && is_strict(kind)) return ErrorValue::na;
  if (operand.is_missing() || kind == Parameter::any) return std::nullopt;
  const Variant& held = *operand.value();
  const ValueView value = view_of(held);
  if (value.is_error()) return value.error();
  if (is_strict(kind) && value.is_boolean()) return ErrorValue::value;
  switch (kind) {
    case Parameter::strict_number:
    case Parameter::number: {
      if (held.get_if<double>()) return std::nullopt;
      const auto number = to_number(value, context.dates());
      if (!number) return number.error();
      operand = *number;
      return std::nullopt;
    }
    case Parameter::text:
      if (!value.is_text()) operand = *to_text(value);
      return std::nullopt;
    case Parameter::logical: {
      const auto flag = to_logical(value);
      if (!flag) return flag.error();
      operand = *flag;
      return std::nullopt;
    }
    default:
      return std::nullopt;
  }
}

/// A scalar result with the one form that a number may have.
Operand settled(Operand result) {
  if (const Variant* value = result.value())
    if (const auto* number = value->get_if<double>()) return finite(*number);
  return result;
}

Operand run_once(const FunctionSpec& spec, Context& context, std::span<Operand> arguments,
                 bool array) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Parameter kind = spec.parameter(static_cast<int>(i));
    if (!wants_single_value(kind)) continue;
    if (const auto error = coerce(kind, arguments[i], context)) return *error;
  }
  Call call(context, arguments, array);
  return settled(spec.body.run(call));
}

/// Runs the function for each element of the arguments that have several.
class Lift {
 public:
  Lift(const FunctionSpec& spec, Context& context, std::span<const Operand> arguments)
      : spec_(spec), context_(context), arguments_(arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const bool many = wants_single_value(spec.parameter(static_cast<int>(i))) &&
                        (arguments[i].is_array() || arguments[i].is_reference());
      if (many) {
        grids_.emplace_back(i, Grid(context, arguments[i]));
        rows_ = std::max(rows_, grids_.back().second.rows());
        columns_ = std::max(columns_, grids_.back().second.columns());
      }
    }
  }

  Operand run() {
    if (context_.gave_up()) return ErrorValue::na;
    return build_array(context_, rows_, columns_,
                       [this](int row, int column) { return element(row, column); });
  }

 private:
  Variant element(int row, int column) {
    std::vector<Operand> arguments(arguments_.begin(), arguments_.end());
    for (const auto& [position, grid] : grids_)
      arguments[position] = grid.broadcast(row, column).to_variant();
    const Operand result = run_once(spec_, context_, arguments, true);
    // An element is one value: of a result with several, the first is kept.
    return Grid(context_, result).at(0, 0).to_variant();
  }

  const FunctionSpec& spec_;
  Context& context_;
  std::span<const Operand> arguments_;
  std::vector<std::pair<std::size_t, Grid>> grids_;
  int rows_ = 1;
  int columns_ = 1;
};

}  // namespace

double Call::number(int i) const noexcept {
  const Variant* value = arguments_[i].value();
  const double* number = value ? value->get_if<double>() : nullptr;
  return number ? *number : 0.0;
}

const std::string& Call::text(int i) const noexcept {
  static const std::string nothing;
  const Variant* value = arguments_[i].value();
  return value ? value->text() : nothing;
}

bool Call::logical(int i) const noexcept {
  const Variant* value = arguments_[i].value();
  const bool* flag = value ? value->get_if<bool>() : nullptr;
  return flag && *flag;
}

ValueView Call::value(int i) const noexcept {
  const Variant* value = arguments_[i].value();
  return value ? view_of(*value) : ValueView();
}

Operand run_function(const FunctionSpec& spec, Context& context, std::span<Operand> arguments,
                     bool array) {
  bool many = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    Operand& operand = arguments[i];
    const Parameter kind = spec.parameter(static_cast<int>(i));
    if (operand.is_span() && !spec.has(takes_spans)) return ErrorValue::value;
    if (kind == Parameter::reference && !operand.is_reference()) {
      if (operand.is_missing()) continue;
      return operand.error() ? *operand.error() : ErrorValue::value;
    }
    if (!wants_single_value(kind)) continue;
    if (operand.is_array()) {
      many = true;
    } else if (operand.is_reference()) {
      const Area* area = operand.area();
      if (is_strict(kind) && area && !area->rect.is_cell()) return ErrorValue::value;
      if (array && area && !area->rect.is_cell())
        many = true;
      else
        operand = context.single(operand).to_variant();
    }
  }
  if (context.gave_up()) return ErrorValue::na;
  if (many) return Lift(spec, context, arguments).run();
  return run_once(spec, context, arguments, array);
}

}  // namespace qto::embedded
