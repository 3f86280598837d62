#pragma once

#include <span>
#include <string>
#include <string_view>

#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/embedded/evaluate/context.hpp"
#include "qto/hosts/embedded/evaluate/function_spec.hpp"

namespace qto::embedded {

class Walker;

/// One call of a function: its arguments, already what their parameters want. Positions count
/// from 0.
class Call {
 public:
  Call(Context& context, std::span<const Operand> arguments, bool array)
      : context_(context), arguments_(arguments), array_(array) {}

  Context& context() const noexcept { return context_; }
  /// True where operations run over all elements of references.
  bool array() const noexcept { return array_; }
  int count() const noexcept { return static_cast<int>(arguments_.size()); }
  /// True for an argument that is there and not left blank between its commas.
  bool given(int i) const noexcept { return i < count() && !arguments_[i].is_missing(); }
  const Operand& operator[](int i) const noexcept { return arguments_[i]; }
  std::span<const Operand> from(int i) const noexcept { return arguments_.subspan(i); }

  /// Of a parameter that wants a number; 0 when left blank.
  double number(int i) const noexcept;
  /// The fallback stands for an argument that is not there at all.
  double number(int i, double fallback) const noexcept {
    return i < count() ? number(i) : fallback;
  }
  const std::string& text(int i) const noexcept;
  bool logical(int i) const noexcept;
  bool logical(int i, bool fallback) const noexcept { return i < count() ? logical(i) : fallback; }
  /// Of a parameter that wants a value.
  ValueView value(int i) const noexcept;

 private:
  Context& context_;
  std::span<const Operand> arguments_;
  bool array_;
};

/// One call of a function that evaluates its arguments itself.
class LazyCall {
 public:
  LazyCall(Walker& walker, const formula::Node& node, bool array);

  Context& context() const noexcept;
  bool array() const noexcept { return array_; }
  int count() const noexcept { return count_; }
  bool missing(int i) const noexcept;
  /// The value of an argument; left-out ones stay missing.
  Operand evaluate(int i) const;
  /// True when an operand has more than one element here, so that the function works element-wise.
  bool is_many(const Operand& operand) const noexcept;
  /// The text of an argument that is nothing but a name; "" for any other.
  std::string_view name(int i) const noexcept;
  /// The function value whose parameters are the arguments before the last, which is its body;
  /// #VALUE! when a parameter is no plain name.
  Operand function_value() const;
  /// Makes a name stand for a value until the call ends.
  void bind(std::string_view name, Operand value);

 private:
  formula::NodeIndex argument(int i) const noexcept;
  Walker& walker_;
  const formula::Node& node_;
  int count_;
  bool array_;
};

/// Runs the function over coerced arguments, element by element where arrays or (in array
/// evaluation) references stand in the place of single values. The only caller of `run`.
Operand run_function(const FunctionSpec& spec, Context& context, std::span<Operand> arguments,
                     bool array);

}  // namespace qto::embedded
