#pragma once

#include "qto/hosts/embedded/evaluate/grid.hpp"

namespace qto::embedded::functions {

struct Shape {
  int rows = 1;
  int columns = 1;
};
/// Rows and columns of an operand; nothing is read.
Shape shape_of(const Operand& operand) noexcept;
/// The error that keeps an operand from being a block of values.
std::optional<ErrorValue> refusal(const Operand& operand);
/// A part of an operand, counted from 0 and inside its shape. References stay references; nothing
/// of them is read.
Operand part_of(Context& context, const Operand& operand, int row, int column, int rows,
                int columns);

}  // namespace qto::embedded::functions
