#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/evaluate/operand.hpp"

namespace qto::embedded {

class Call;
class LazyCall;

/// What a function wants of an argument. Where a single value is wanted, references intersect with
/// the formula's cell, and arrays make the function run once for each element.
enum class Parameter : std::uint8_t {
  number,         ///< a value, made a number
  strict_number,  ///< the same, but Booleans and blocks of cells are refused with #VALUE!, and a
                  ///< blank argument is #N/A
  strict_value,   ///< a value as it is, with the same refusals
  text,           ///< a value, made a text
  logical,        ///< a value, made a Boolean
  value,          ///< a value as it is; an error becomes the result
  any,            ///< a value as it is, errors too
  values,         ///< values or a reference, as they come
  array,          ///< the same, with operations in the argument run over all elements
  reference,      ///< a reference; anything else is #VALUE!
};

/// The parameters of a function in order; the last one repeats.
struct ParameterList {
  std::array<Parameter, 8> kinds{};
  std::uint8_t count = 0;

  template <class... P>
  constexpr ParameterList(P... list) : kinds{list...}, count(sizeof...(P)) {}
};

enum Trait : unsigned {
  plain = 0,
  changes_always = 1,   ///< the result can change without a change of any argument
  gives_reference = 2,  ///< the result may be a reference
  takes_spans = 4,      ///< references over several sheets are accepted
  repeats_pair = 8,     ///< the last two parameters repeat together
};

using Run = Operand (*)(Call&);
using RunLazy = Operand (*)(LazyCall&);

/// The code of a function; a lazy one evaluates its arguments itself.
struct FunctionBody {
  template <std::convertible_to<Run> F>
  constexpr FunctionBody(F function) : run(function) {}
  template <std::convertible_to<RunLazy> F>
  constexpr FunctionBody(F function) : lazy(function) {}
  Run run = nullptr;
  RunLazy lazy = nullptr;
};

inline constexpr int any_count = 255;

/// Everything that is known about a function, in one row of a table.
struct FunctionSpec {
  std::string_view name;
  int min_args;
  int max_args;
  unsigned traits;
  ParameterList parameters;
  FunctionBody body;
  /// Documentation: parameter names, what it does, an example and the text of its result.
  std::string_view syntax, summary, example, result;

  constexpr bool has(Trait trait) const { return (traits & trait) != 0; }
  /// The kind of the argument at a position from 0.
  constexpr Parameter parameter(int position) const {
    const int last = parameters.count - 1;
    if (position <= last) return parameters.kinds[position];
    if (has(repeats_pair)) return parameters.kinds[last - (position - last) % 2];
    return parameters.kinds[last];
  }
};

/// True for a table whose rows are in order, without duplicates, and plausible.
constexpr bool well_formed(std::span<const FunctionSpec> rows) {
  return std::ranges::adjacent_find(rows, std::greater_equal{}, &FunctionSpec::name) ==
             rows.end() &&
         std::ranges::all_of(rows, [](const FunctionSpec& f) {
           return f.min_args <= f.max_args && (f.max_args == 0 || f.parameters.count > 0) &&
                  !f.summary.empty() && !f.example.empty();
         });
}

/// Finds functions by name.
class FunctionTable {
 public:
  explicit FunctionTable(std::span<const std::span<const FunctionSpec>> families);
  /// The function of that name (upper case), or null.
  const FunctionSpec* find(std::string_view name) const noexcept;

 private:
  std::vector<const FunctionSpec*> slots_;  // open addressing
  std::size_t mask_ = 0;
};

}  // namespace qto::embedded
