#include "cli/output/cell_run.hpp"

#include <optional>

#include "qto/model/model_parts.hpp"

namespace qto::cli {
namespace {

constexpr std::size_t shortest_run = 21;

std::optional<CellPos> constant_cell(ModelPart& part) {
  const auto& list = part.DirectPrecedents();
  if (!part.sheet_record() || part.IsUnknown() || part.HasError() || !part.IsConstant() ||
      (list && list->Count() > 0))
    return std::nullopt;
  return part.cell();
}

std::optional<CellPos> empty_cell(ModelPart& part) {
  return part.value().is_empty() ? constant_cell(part) : std::nullopt;
}

template <class CellOf>
CellRun run_of(std::span<ModelPart* const> parts, CellOf&& cell_of) {
  if (parts.size() < shortest_run) return {};
  const std::optional<CellPos> first = cell_of(*parts[0]);
  if (!first) return {};
  std::size_t width = 0;  // cells of a row of the block; 0 until the first row ended
  std::size_t count = 0;
  for (ModelPart* part : parts) {
    const std::optional<CellPos> pos = cell_of(*part);
    if (!pos || part->sheet_record() != parts[0]->sheet_record()) break;
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

}  // namespace

CellRun run_at_front(std::span<ModelPart* const> parts) { return run_of(parts, constant_cell); }
CellRun empty_run_at_front(std::span<ModelPart* const> parts) { return run_of(parts, empty_cell); }

}  // namespace qto::cli
