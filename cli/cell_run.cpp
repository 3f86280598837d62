#include "cli/cell_run.hpp"

#include <optional>

#include "qto/model/model_parts.hpp"

namespace qto::cli {
namespace {

constexpr std::size_t shortest_run = 21;

std::optional<CellPos> constant_cell(ModelPart& part) {
  const auto& list = part.DirectPrecedents();
  if (part.ObjectType() != "Range" || part.IsUnknown() || part.HasError() || !part.IsConstant() ||
      (list && list->Count() > 0))
    return std::nullopt;
  const auto cell = parse_cell(part.AddressShort());
  return cell ? std::optional(cell->pos) : std::nullopt;
}

bool same_sheet(const ModelPart& a, const ModelPart& b) {
  return a.Workbook() == b.Workbook() && a.WorkSheetName() == b.WorkSheetName();
}

}  // namespace

CellRun run_at_front(std::span<ModelPart* const> parts) {
  if (parts.size() < shortest_run) return {};
  const auto first = constant_cell(*parts[0]);
  if (!first) return {};
  std::size_t width = 0;  // cells of a row of the block; 0 until the first row ended
  std::size_t count = 0;
  for (ModelPart* part : parts) {
    const auto pos = constant_cell(*part);
    if (!pos || !same_sheet(*part, *parts[0])) break;
    const auto n = static_cast<std::int32_t>(count);
    if (width == 0 && (pos->row != first->row || pos->column != first->column + n)) width = count;
    if (width != 0) {
      const auto w = static_cast<std::int32_t>(width);
      if (*pos != CellPos{first->row + n / w, first->column + n % w}) break;
    }
    ++count;
  }
  if (width == 0) width = count;
  count -= count % width;
  if (count < shortest_run) return {};
  CellRun run{count, 0, {*first, *first}};
  run.block.last.row += static_cast<std::int32_t>(count / width) - 1;
  run.block.last.column += static_cast<std::int32_t>(width) - 1;
  for (ModelPart* part : parts.first(count)) run.empty += part->value().is_empty();
  return run;
}

}  // namespace qto::cli
