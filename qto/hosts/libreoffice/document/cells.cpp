#include "qto/hosts/libreoffice/document/cells.hpp"

#include <algorithm>
#include <com/sun/star/sheet/CellFlags.hpp>
#include <com/sun/star/sheet/XCellRangeData.hpp>
#include <com/sun/star/sheet/XCellRangeFormula.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/table/XCell.hpp>
#include <numeric>

#include "qto/hosts/libreoffice/document/cell_error.hpp"

namespace qto::libreoffice {
namespace {

using Sheet = uno::Reference<sheet::XSpreadsheet>;
namespace CellFlags = com::sun::star::sheet::CellFlags;
constexpr std::int32_t formulas = CellFlags::FORMULA;
constexpr std::int32_t contents =
    CellFlags::VALUE | CellFlags::DATETIME | CellFlags::STRING | CellFlags::FORMULA;

std::vector<Rect> blocks_of(const Sheet& sheet, std::int32_t flags) {
  const uno::Reference<sheet::XCellRangesQuery> query(sheet, uno::UNO_QUERY_THROW);
  std::vector<Rect> blocks;
  for (const auto& range :
       query->queryContentCells(static_cast<sal_Int16>(flags))->getRangeAddresses())
    blocks.push_back(
        {{range.StartRow + 1, range.StartColumn + 1}, {range.EndRow + 1, range.EndColumn + 1}});
  return blocks;
}

/// Cuts a block into pieces of a moderate number of cells.
template <class Visit>
void for_each_slice(const Rect& block, Visit&& visit) {
  constexpr std::int64_t most_cells = 1 << 18;
  const auto rows =
      static_cast<std::int32_t>(std::max<std::int64_t>(1, most_cells / block.columns()));
  for (std::int32_t row = block.first.row; row <= block.last.row; row += rows)
    visit(Rect{{row, block.first.column},
               {std::min(row + rows - 1, block.last.row), block.last.column}});
}

template <class Interface>
uno::Reference<Interface> range_of(const Sheet& sheet, const Rect& block) {
  return {sheet->getCellRangeByPosition(block.first.column - 1, block.first.row - 1,
                                        block.last.column - 1, block.last.row - 1),
          uno::UNO_QUERY_THROW};
}

std::int32_t error_at(const Sheet& sheet, CellPos pos) {
  return sheet->getCellByPosition(pos.column - 1, pos.row - 1)->getError();
}

/// Files' constants TRUE, FALSE and #N/A reach the suite as formulas. A formula that is nothing but
/// #REF! or #NAME? has lost what it referred to: it stays one.
bool is_constant(const OUString& formula) {
  if (formula.getLength() > 9) return false;
  for (const char* text :
       {"=TRUE()", "=FALSE()", "=#N/A", "=#DIV/0!", "=#VALUE!", "=#NUM!", "=#NULL!"})
    if (formula.equalsAscii(text)) return true;
  return false;
}

}  // namespace

Cells::Cells(const Sheet& sheet) {
  read_values(sheet);
  put_in_order();
  read_formulas(sheet);
  mark_dates(sheet);
}

std::size_t Cells::Column::lower_bound(std::int32_t row) const noexcept {
  return static_cast<std::size_t>(std::lower_bound(rows.begin(), rows.end(), row) - rows.begin());
}

const CellRecord* Cells::find(CellPos pos) const noexcept {
  if (pos.column < 1 || pos.column > last_column()) return nullptr;
  const Column& column = columns_[pos.column];
  if (column.rows.empty() || pos.row < column.rows.front()) return nullptr;
  // Of a column without gaps the place is known.
  const auto guess = static_cast<std::size_t>(pos.row - column.rows.front());
  if (guess < column.rows.size() && column.rows[guess] == pos.row) return &column.records[guess];
  const std::size_t place = column.lower_bound(pos.row);
  return place < column.rows.size() && column.rows[place] == pos.row ? &column.records[place]
                                                                     : nullptr;
}

void Cells::add(CellPos pos, CellRecord record) {
  if (pos == scratch_cell) return;
  if (pos.column > last_column()) columns_.resize(pos.column + 1);
  columns_[pos.column].rows.push_back(pos.row);
  columns_[pos.column].records.push_back(std::move(record));
}

/// Blocks come in no order of rows; then the cells of a column are put in order, and what the used
/// block is follows.
void Cells::put_in_order() {
  bool any = false;
  for (std::int32_t c = 1; c <= last_column(); ++c) {
    Column& column = columns_[c];
    if (column.rows.empty()) continue;
    if (!std::is_sorted(column.rows.begin(), column.rows.end())) {
      std::vector<std::size_t> order(column.rows.size());
      std::iota(order.begin(), order.end(), 0);
      std::sort(order.begin(), order.end(),
                [&](std::size_t a, std::size_t b) { return column.rows[a] < column.rows[b]; });
      Column sorted;
      for (const std::size_t i : order) {
        sorted.rows.push_back(column.rows[i]);
        sorted.records.push_back(std::move(column.records[i]));
      }
      column = std::move(sorted);
    }
    const Rect own{{column.rows.front(), c}, {column.rows.back(), c}};
    if (!any) used_ = own;
    any = true;
    used_.first.row = std::min(used_.first.row, own.first.row);
    used_.last = {std::max(used_.last.row, own.last.row), c};
  }
}

void Cells::read_values(const Sheet& sheet) {
  for (const Rect& block : blocks_of(sheet, contents))
    for_each_slice(block, [&](const Rect& slice) {
      const auto rows = range_of<sheet::XCellRangeData>(sheet, slice)->getDataArray();
      for (std::int32_t r = 0; r < rows.getLength(); ++r)
        for (std::int32_t c = 0; c < rows[r].getLength(); ++c) {
          const uno::Any& value = rows[r][c];
          CellRecord record;
          if (value >>= record.number) {
            record.kind = CellKind::number;
          } else if (value >>= record.text) {
            record.kind = CellKind::text;
          } else {
            record.kind = CellKind::error;
          }
          add({slice.first.row + r, slice.first.column + c}, std::move(record));
        }
    });
}

void Cells::read_formulas(const Sheet& sheet) {
  for (const Rect& block : blocks_of(sheet, formulas))
    for_each_slice(block, [&](const Rect& slice) {
      const auto rows = range_of<sheet::XCellRangeFormula>(sheet, slice)->getFormulaArray();
      for (std::int32_t r = 0; r < rows.getLength(); ++r)
        for (std::int32_t c = 0; c < rows[r].getLength(); ++c) {
          const CellPos pos{slice.first.row + r, slice.first.column + c};
          CellRecord* record = find(pos);
          if (!record) continue;
          const bool constant = is_constant(rows[r][c]);
          if (!constant) record->formula = rows[r][c];
          if (record->kind == CellKind::error)
            record->number = static_cast<double>(error_of(error_at(sheet, pos)));
          else if (record->kind == CellKind::number)
            record->kind = constant ? CellKind::boolean : CellKind::formula_number;
        }
    });
}

void Cells::mark_dates(const Sheet& sheet) {
  for (const Rect& block : blocks_of(sheet, CellFlags::DATETIME))
    for (std::int32_t c = block.first.column; c <= block.last.column; ++c)
      for (std::int32_t r = block.first.row; r <= block.last.row; ++r)
        if (CellRecord* record = find({r, c}); record && record->kind == CellKind::number)
          record->kind = CellKind::date;
}

}  // namespace qto::libreoffice
