#include "qto/hosts/embedded/recalc/data_tables.hpp"

#include <algorithm>

#include "qto/hosts/embedded/recalc/calculation.hpp"
#include "qto/hosts/embedded/recalc/formula_groups.hpp"
#include "qto/hosts/embedded/recalc/store_result.hpp"

namespace qto::embedded {
namespace {

/// Tables may rest on tables; those that rest on themselves come to no end.
constexpr int most_table_rounds = 8;

Variant value_at(const Sheet& sheet, CellPos pos) {
  const Cell* cell = sheet.cells.find(pos);
  return cell ? sheet.book().value_of(*cell) : Variant();
}

/// An input cell, which gets its own content back in the end.
class InputCell {
 public:
  InputCell(Sheet& sheet, CellPos pos)
      : address{&sheet, pos}, content_(sheet.cells.touch(pos)), formula_(sheet.cells.formula(pos)) {
    if (formula_ != 0) sheet.cells.set_formula(pos, 0);
  }
  ~InputCell() {
    address.sheet->cells.touch(address.pos) = content_;
    if (formula_ != 0) address.sheet->cells.set_formula(address.pos, formula_);
  }
  InputCell(const InputCell&) = delete;
  InputCell& operator=(const InputCell&) = delete;

  void put(const Variant& value) {
    address.sheet->book().store(address.sheet->cells.touch(address.pos), value);
  }

  const CellAddress address;

 private:
  Cell content_;
  FormulaId formula_;
};

}  // namespace

DataTables::DataTables(const std::vector<Book*>& books, const OpenBooks& open, double now)
    : books_(books), open_(open), now_(now) {
  for (const Book* book : books)
    for (FormulaId id = 1; id <= book->formula_records(); ++id)
      if (book->formula(id).kind == FormulaKind::data_table)
        for (const auto& sheet : book->sheets()) list(*sheet, id);
}

void DataTables::list(Sheet& sheet, FormulaId id) {
  const auto table = data_table(sheet.book().formula(id));
  if (!table || sheet.formula_at(table->block.first) != id) return;
  if (table->formula_cell(table->block.first).on_grid()) entries_.push_back({&sheet, *table});
}

void DataTables::note_pending() {
  if (entries_.empty()) return;
  std::vector<CellAddress> changes;
  for (const Book* book : books_)
    changes.insert(changes.end(), book->pending().begin(), book->pending().end());
  note_changes(changes, std::ranges::any_of(books_, &Book::all_pending));
  for (Entry& entry : entries_)
    entry.stale |= std::ranges::any_of(changes, [&](const CellAddress& cell) {
      return cell.sheet == entry.sheet && entry.table.block.contains(cell.pos);
    });
}

void DataTables::note_changes(std::span<const CellAddress> changes, bool everything) {
  FormulaGraph graph({books_.begin(), books_.end()}, &open_);
  MarkedCells changed(graph);
  for (const CellAddress& cell : changes) changed.add({cell.sheet, Rect::cell(cell.pos)});
  const FormulaSelection affected =
      everything ? FormulaSelection::everything() : affected_formulas(graph, changed);
  const auto reached = [&](const Entry& entry, CellPos at) {
    const auto sources = entry.table.sources(at);
    return std::ranges::any_of(sources, [&](CellPos pos) {
      const FormulaId id = entry.sheet->formula_at(pos);
      return changed.touch({entry.sheet, Rect::cell(pos)}) ||
             (id != 0 && affected.contains(*graph.number_of(*entry.sheet), id));
    });
  };
  for (Entry& entry : entries_) {
    const Rect& block = entry.table.block;
    entry.stale = everything;
    for (std::int32_t row = block.first.row; row <= block.last.row && !entry.stale; ++row)
      entry.stale = reached(entry, {row, block.first.column});
    for (std::int32_t column = block.first.column; column <= block.last.column && !entry.stale;
         ++column)
      entry.stale = reached(entry, {block.first.row, column});
  }
}

void DataTables::calculate() {
  for (int round = 0; round < most_table_rounds; ++round) {
    std::vector<CellAddress> changes;
    for (const Entry& entry : entries_) {
      if (!entry.stale) continue;
      const std::vector<CellAddress> cells = calculate(entry);
      changes.insert(changes.end(), cells.begin(), cells.end());
    }
    if (changes.empty()) return;
    calculate_from(changes);
    note_changes(changes, false);
  }
}

std::vector<CellAddress> DataTables::calculate(const Entry& entry) {
  const std::vector<Variant> values = results(entry);
  const Rect& block = entry.table.block;
  std::vector<CellAddress> changes;
  std::size_t next = 0;
  for (std::int32_t row = block.first.row; row <= block.last.row; ++row)
    for (std::int32_t column = block.first.column; column <= block.last.column; ++column)
      if (store_result(*entry.sheet, Rect::cell({row, column}), values[next++]))
        changes.push_back({entry.sheet, {row, column}});
  return changes;
}

/// What the cells of the table show, row by row.
std::vector<Variant> DataTables::results(const Entry& entry) {
  const DataTable& table = entry.table;
  const Rect& block = table.block;
  std::vector<Variant> values(static_cast<std::size_t>(block.cells()));
  std::vector<CellAddress> inputs;
  {
    std::optional<InputCell> row_input, column_input;
    if (table.row_input)
      inputs.push_back(row_input.emplace(*entry.sheet, *table.row_input).address);
    if (table.column_input)
      inputs.push_back(column_input.emplace(*entry.sheet, *table.column_input).address);
    // What has one input shows a whole row or column of results at once.
    const std::int32_t rows = table.column_input ? 1 : block.rows();
    const std::int32_t columns = table.row_input ? 1 : block.columns();
    for (std::int32_t row = block.first.row; row <= block.last.row; row += rows)
      for (std::int32_t column = block.first.column; column <= block.last.column;
           column += columns) {
        const CellPos first{row, column};
        if (row_input) row_input->put(value_at(*entry.sheet, table.row_value(first)));
        if (column_input) column_input->put(value_at(*entry.sheet, table.column_value(first)));
        calculate_from(inputs);
        for (std::int32_t r = row; r < row + rows; ++r)
          for (std::int32_t c = column; c < column + columns; ++c)
            values[static_cast<std::size_t>(r - block.first.row) *
                       static_cast<std::size_t>(block.columns()) +
                   static_cast<std::size_t>(c - block.first.column)] =
                value_at(*entry.sheet, table.formula_cell({r, c}));
      }
  }
  calculate_from(inputs);
  return values;
}

void DataTables::calculate_from(std::span<const CellAddress> changes) {
  Calculation(books_, open_, now_, changes).run();
}

}  // namespace qto::embedded
