#include "qto/hosts/embedded/formulas/data_table.hpp"

#include "qto/hosts/embedded/formulas/compiled_formula.hpp"

namespace qto::embedded {
namespace {

std::optional<CellPos> input_at(const formula::SyntaxTree& tree, formula::NodeIndex argument,
                                CellPos at) {
  if (argument == formula::no_node) return std::nullopt;
  const formula::Node& node = tree.at(argument);
  if (node.kind != formula::NodeKind::area) return std::nullopt;
  return tree.areas[node.payload].resolve(at).first;
}

}  // namespace

CellPos DataTable::formula_cell(CellPos at) const noexcept {
  if (row_input && column_input) return {block.first.row - 1, block.first.column - 1};
  return row_input ? column_value(at) : row_value(at);
}

std::vector<CellPos> DataTable::sources(CellPos at) const {
  std::vector<CellPos> cells{formula_cell(at)};
  if (row_input) cells.insert(cells.end(), {*row_input, row_value(at)});
  if (column_input) cells.insert(cells.end(), {*column_input, column_value(at)});
  std::erase_if(cells, [](CellPos cell) { return !cell.on_grid(); });
  return cells;
}

std::optional<DataTable> data_table(const FormulaRecord& record) {
  const formula::SyntaxTree* tree =
      record.kind == FormulaKind::data_table ? record.compiled->tree() : nullptr;
  if (!tree || tree->at(tree->root).kind != formula::NodeKind::call) return std::nullopt;
  const formula::NodeIndex row = tree->at(tree->root).first_child;
  if (row == formula::no_node) return std::nullopt;
  DataTable table{record.block, input_at(*tree, row, record.block.first),
                  input_at(*tree, tree->at(row).next, record.block.first)};
  if (!table.row_input && !table.column_input) return std::nullopt;
  return table;
}

}  // namespace qto::embedded
