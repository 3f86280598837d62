#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "qto/hosts/embedded/application.hpp"
#include "qto/hosts/embedded/book/book.hpp"
#include "tests/conformance/perturbation/generated_formula.hpp"

namespace qto::embedded::conformance {

/// A small random workbook, the same for the same seed. On each of its data sheets, whose names are
/// odd, A1:A12 hold rising numbers, B1:B12 short texts, C1:E12 anything, F1:F6 texts that are
/// references, and A14:F14 headings of a table. Formulas stand in the first rows of its last sheet,
/// beside values of its own in D1:I14. A second book is open with it.
class GeneratedBook {
 public:
  explicit GeneratedBook(std::uint64_t seed, int formulas = 24);

  const Ref<host::Workbook>& workbook() const noexcept { return workbook_; }
  struct FormulaCell {
    Sheet* sheet;
    CellPos at;
    GeneratedFormula formula;
    bool array;
  };
  const std::vector<FormulaCell>& formulas() const noexcept { return formulas_; }
  /// Puts another formula into such a cell.
  void enter(const FormulaCell& cell, const GeneratedFormula& formula);
  /// What was entered, one entry a line.
  const std::string& script() const noexcept { return script_; }

 private:
  void make_sheets();
  void fill_data(Book& book, Sheet& sheet);
  void fill_other_book();
  void add_table();
  void add_names();
  void add_spill();
  void add_formulas(int count);
  void put(Sheet& sheet, CellPos at, const Variant& value);
  void put_formula(Sheet& sheet, CellPos at, const std::string& text, bool array);
  void name(const std::string& name, const std::string& refers_to, const std::string& sheet = {});
  std::string anywhere(const std::string& address);

  Chance chance_;
  Application application_;
  Ref<host::Workbook> workbook_, other_workbook_;
  Book* book_ = nullptr;
  Book* other_ = nullptr;
  Sheet* own_ = nullptr;
  std::vector<Sheet*> data_;
  GeneratedNames names_;
  std::vector<FormulaCell> formulas_;
  std::string script_;
};

}  // namespace qto::embedded::conformance
