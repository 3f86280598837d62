#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/formulas/formula_intern.hpp"

namespace qto::embedded {

/// A book that a test writes down: formulas, values and names by address.
struct TextBook {
  Book book;
  FormulaIntern formulas{book};

  TextBook() { book.add_sheet("Sheet1"); }

  /// "B7" is on the first sheet, "Sheet2!B7" on that one, which is added when it is missing.
  CellAddress at(std::string_view address) {
    const std::size_t mark = address.find('!');
    const bool qualified = mark != std::string_view::npos;
    const std::string_view name = qualified ? address.substr(0, mark) : "Sheet1";
    Sheet* sheet = book.find_sheet(name);
    if (!sheet) sheet = &book.add_sheet(std::string(name));
    return {sheet, parse_cell(qualified ? address.substr(mark + 1) : address)->pos};
  }

  void formula(std::string_view address, std::string_view text) {
    const CellAddress cell = at(address);
    cell.sheet->cells.touch(cell.pos);
    cell.sheet->cells.set_formula(cell.pos, formulas.intern(text, cell.pos));
    book.cell_changed(cell);
  }

  void array(std::string_view address, std::string_view text) {
    const std::size_t mark = address.find('!');
    const std::string_view area =
        mark == std::string_view::npos ? address : address.substr(mark + 1);
    const Rect block = parse_area(area)->rect();
    Sheet* sheet = at(std::string(address.substr(0, address.find(':')))).sheet;
    sheet->set_block_formula(block, formulas.add_array(text, block));
    book.cell_changed({sheet, block.first});
  }

  /// TABLE(row input,column input)
  void data_table(std::string_view address, std::string_view text) {
    const Rect block = parse_area(address)->rect();
    Sheet* sheet = at("A1").sheet;
    sheet->set_block_formula(block, formulas.add_data_table(text, block));
    book.cell_changed({sheet, block.first});
  }

  void value(std::string_view address, const Variant& value) {
    const CellAddress cell = at(address);
    book.store(cell.sheet->cells.touch(cell.pos), value);
    book.cell_changed(cell);
  }

  void name(std::string_view name, std::string_view refers_to, const Sheet* sheet = nullptr) {
    book.names.set(
        {std::string(name), sheet, false, CompiledFormula::compile(refers_to, CellPos{})});
    book.everything_changed();
  }

  /// The value as a text; "" for an empty cell.
  std::string shown(std::string_view address) {
    const CellAddress cell = at(address);
    const Cell* found = cell.sheet->cells.find(cell.pos);
    const Variant value = found ? book.value_of(*found) : Variant();
    if (value.is_text()) return value.text();
    if (const auto* error = value.get_if<ErrorValue>()) return std::string(error_text(*error));
    if (const auto* flag = value.get_if<bool>()) return *flag ? "TRUE" : "FALSE";
    if (const auto* number = value.get_if<double>()) {
      std::string text = std::to_string(*number);
      text.erase(text.find_last_not_of('0') + 1);
      if (text.ends_with('.')) text.pop_back();
      return text;
    }
    return "";
  }
};

}  // namespace qto::embedded
