#pragma once

#include <cstdint>
#include <string_view>

namespace qto::embedded {

/// How a place in a formula uses the reference that stands there.
enum class Use : std::uint8_t {
  single,   ///< one value of it: the cell in the formula's own row or column
  full,     ///< all of its cells
  watched,  ///< some of its cells, which turns out in evaluation
  address,  ///< where it lies, not what it holds
};

/// Functions whose arguments are used in their own ways.
enum class SpecialFunction : std::uint8_t {
  none,
  looks_at_address,  ///< ROW, ROWS, ...
  looks_at_formula,  ///< FORMULATEXT, ISFORMULA: a change of the cell matters
  offset,
  cell,
  index,
  choice,         ///< CHOOSE: the arguments after the first are handed on
  condition,      ///< IF: the same
  conditions,     ///< IFS: every second argument is handed on
  selection,      ///< SWITCH
  catch_error,    ///< IFERROR, IFNA: the second argument is handed on
  bind_names,     ///< LET: names and values, then the result
  lambda,         ///< LAMBDA: names, then the body
  table_column,   ///< VLOOKUP: reads the first column of its table and one cell
  table_row,      ///< HLOOKUP: the first row
  result_vector,  ///< LOOKUP, XLOOKUP: one cell of the third argument is read
  sum_range_if,   ///< SUMIF, AVERAGEIF: the third argument takes the shape of the first
};

SpecialFunction special_function(std::string_view name) noexcept;

/// True for an argument, counted from 0, whose reference is the function's own result.
bool hands_on(SpecialFunction function, int argument, int count) noexcept;

/// True for an argument, counted from 0, that is evaluated only where the ones before it, or the
/// use of a name, ask for it.
bool is_conditional(SpecialFunction function, int argument, int count) noexcept;

}  // namespace qto::embedded
