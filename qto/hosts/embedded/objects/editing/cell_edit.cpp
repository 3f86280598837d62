#include "qto/hosts/embedded/objects/editing/cell_edit.hpp"

#include <algorithm>

#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/objects/checks/edit_guard.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/editing/typed_constant.hpp"
#include "qto/hosts/embedded/objects/link_formula.hpp"
#include "qto/hosts/embedded/objects/range_object.hpp"

namespace qto::embedded {
namespace {

template <class Visit>
void for_each_cell(const std::vector<Rect>& blocks, Visit&& visit) {
  for (const Rect& block : blocks)
    for (std::int32_t column = block.first.column; column <= block.last.column; ++column)
      for (std::int32_t row = block.first.row; row <= block.last.row; ++row)
        visit(CellPos{row, column});
}

void tell_changed(Book& book, Sheet& sheet, const std::vector<Rect>& blocks) {
  constexpr std::int64_t listed_one_by_one = 4'096;
  if (cells_in(blocks) > listed_one_by_one) return book.everything_changed();
  for_each_cell(blocks, [&](CellPos pos) { book.cell_changed({&sheet, pos}); });
}

void clear(Book& book, Sheet& sheet, const std::vector<Rect>& blocks) {
  std::vector<CellPos> filled;
  for (const Rect& block : blocks)
    sheet.cells.for_each(block, [&](CellPos pos, const Cell& cell, FormulaId formula) {
      if (!cell.is_empty() || formula) filled.push_back(pos);
    });
  for (const CellPos pos : filled) {
    sheet.cells.set_formula(pos, 0);
    sheet.cells.touch(pos).clear_value();
    book.cell_changed({&sheet, pos});
  }
}

void store(Book& book, Sheet& sheet, CellPos pos, const Variant& value) {
  Cell& cell = sheet.cells.touch(pos);
  sheet.cells.set_formula(pos, 0);
  book.store(cell, value);
}

void use_format_unless_set(Book& book, Cell& cell, std::string_view code) {
  if (!code.empty() && book.styles.at(cell.style()).format->is_general())
    cell.set_style(book.styles.with_format(cell.style(), code));
}

void write_array(Book& book, Sheet& sheet, const Rect& block, const VariantArray& values) {
  for_each_cell({block}, [&](CellPos pos) {
    const int row = pos.row - block.first.row + 1;
    const int column = pos.column - block.first.column + 1;
    const bool inside = row <= values.rows() && column <= values.columns();
    store(book, sheet, pos, inside ? values.at(row, column) : Variant(ErrorValue::na));
  });
}

void write_formula(OpenBook& open, Sheet& sheet, const std::vector<Rect>& blocks,
                   std::string_view body) {
  const CellPos first = blocks.front().first;
  check_formula(body, first);
  const std::string text = number_links(body, open);
  const FormulaId id = open.formulas().intern(text, first);
  for_each_cell(blocks, [&](CellPos pos) { sheet.cells.set_formula(pos, id); });
}

}  // namespace

void write_value(OpenBook& open, Sheet& sheet, const std::vector<Rect>& blocks,
                 const Variant& value) {
  Book& book = open.book();
  const bool clears = value.is_empty() || value.is_null();
  check_editable(book, sheet, blocks, !clears);
  if (clears) return clear(book, sheet, blocks);
  if (value.is_object()) fail("An object cannot be written into a cell");
  if (value.is_array()) {
    for (const Rect& block : blocks) write_array(book, sheet, block, value.array());
  } else {
    for_each_cell(blocks, [&](CellPos pos) {
      store(book, sheet, pos, value);
      if (value.is_date()) use_format_unless_set(book, sheet.cells.touch(pos), "m/d/yyyy");
    });
  }
  tell_changed(book, sheet, blocks);
}

void write_typed(OpenBook& open, Sheet& sheet, const std::vector<Rect>& blocks,
                 std::string_view typed) {
  Book& book = open.book();
  if (typed.empty()) return write_value(open, sheet, blocks, Empty{});
  check_editable(book, sheet, blocks, true);
  const Cell* first = sheet.cells.find(blocks.front().first);
  const bool text_cell = first && book.styles.at(first->style()).format->is_text();
  if (typed.size() > 1 && typed.front() == '=' && !text_cell) {
    write_formula(open, sheet, blocks, typed.substr(1));
  } else {
    const TypedConstant constant = text_cell ? TypedConstant{Variant(typed), {}}
                                             : read_typed(typed, book.date1904, open.application());
    for_each_cell(blocks, [&](CellPos pos) {
      store(book, sheet, pos, constant.value);
      use_format_unless_set(book, sheet.cells.touch(pos), constant.format);
    });
  }
  tell_changed(book, sheet, blocks);
}

void write_array_formula(OpenBook& open, Sheet& sheet, const Rect& block,
                         std::string_view formula) {
  Book& book = open.book();
  check_editable(book, sheet, {block}, true);
  const std::string_view body = formula.starts_with('=') ? formula.substr(1) : formula;
  check_formula(body, block.first);
  sheet.set_block_formula(block, open.formulas().add_array(number_links(body, open), block));
  tell_changed(book, sheet, {block});
}

void write_number_format(OpenBook& open, Sheet& sheet, const std::vector<Rect>& blocks,
                         std::string_view code) {
  Book& book = open.book();
  if (!formats::NumberFormat::parse(code).is_valid())
    fail("Not a number format: " + std::string(code));
  check_size(blocks);
  if (sheet.protection.enabled) fail("Sheet " + sheet.name + " is protected");
  for_each_cell(blocks, [&](CellPos pos) {
    Cell& cell = sheet.cells.touch(pos);
    cell.set_style(book.styles.with_format(cell.style(), code));
  });
}

void RangeObject::put_value(const Variant& value) {
  write_value(sheet_->open(), sheet_->sheet(), blocks(), value);
}

void RangeObject::put_Formula(std::string_view formula) {
  write_typed(sheet_->open(), sheet_->sheet(), blocks(), formula);
}

void RangeObject::put_FormulaArray(std::string_view formula) {
  if (more_) fail("An array formula fills one block");
  write_array_formula(sheet_->open(), sheet_->sheet(), block_, formula);
}

void RangeObject::put_NumberFormat(std::string_view code) {
  write_number_format(sheet_->open(), sheet_->sheet(), blocks(), code);
}

}  // namespace qto::embedded
