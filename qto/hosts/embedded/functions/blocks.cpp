#include "qto/hosts/embedded/functions/blocks.hpp"

#include "qto/hosts/embedded/evaluate/build_array.hpp"

namespace qto::embedded::functions {

Shape shape_of(const Operand& operand) noexcept {
  if (const Area* area = operand.area()) return {area->rect.rows(), area->rect.columns()};
  if (operand.is_array())
    return {operand.value()->array().rows(), operand.value()->array().columns()};
  return {};
}

std::optional<ErrorValue> refusal(const Operand& operand) {
  if (operand.error()) return *operand.error();
  if (operand.is_missing() || operand.areas().size() > 1) return ErrorValue::value;
  return std::nullopt;
}

Operand part_of(Context& context, const Operand& operand, int row, int column, int rows,
                int columns) {
  if (const Area* area = operand.area()) {
    const CellPos first{area->rect.first.row + row, area->rect.first.column + column};
    return Area{area->sheet, {first, {first.row + rows - 1, first.column + columns - 1}}};
  }
  const Grid grid(context, operand);
  if (rows == 1 && columns == 1) return grid.at(row, column).to_variant();
  return build_array(context, rows, columns,
                     [&](int r, int c) { return grid.at(row + r, column + c).to_variant(); });
}

}  // namespace qto::embedded::functions
