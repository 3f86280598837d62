#include "tests/evaluate/small_book.hpp"

#include <charconv>
#include <limits>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/coercion.hpp"
#include "qto/hosts/embedded/formulas/formula_intern.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"

namespace qto::embedded {

namespace {

Variant constant(std::string_view text) {
  double number = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
  if (!text.empty() && parsed.ec == std::errc() && parsed.ptr == text.data() + text.size())
    return number;
  if (text == "TRUE" || text == "FALSE") return text == "TRUE";
  for (const ErrorValue error :
       {ErrorValue::null, ErrorValue::div0, ErrorValue::value, ErrorValue::ref, ErrorValue::name,
        ErrorValue::num, ErrorValue::na})
    if (error_text(error) == text) return error;
  if (text.size() >= 2 && text.front() == '"') text = text.substr(1, text.size() - 2);
  return text;
}

std::string text_of(const ValueView& value) {
  if (value.is_error()) return std::string(error_text(value.error()));
  return *to_text(value);
}

}  // namespace

SmallBook::SmallBook() : evaluator_(*this, functions::registry()) {
  book.name = "Small.xlsx";
  book.add_sheet("Sheet1");
  other.name = "Other.xlsx";
}

Sheet& SmallBook::sheet(std::string_view name) {
  Sheet* found = book.find_sheet(name);
  return found ? *found : book.add_sheet(std::string(name));
}

void SmallBook::fill(std::string_view cells) {
  FormulaIntern formulas(book);
  while (!cells.empty()) {
    const std::size_t end = std::min(cells.find(';'), cells.size());
    const std::string_view entry = text::trim(cells.substr(0, end));
    cells.remove_prefix(std::min(end + 1, cells.size()));
    if (entry.empty()) continue;
    const std::size_t sign = entry.find('=');
    std::string_view address = entry.substr(0, sign);
    const std::string_view content = entry.substr(sign + 1);
    Sheet* target = &sheet("Sheet1");
    if (const std::size_t mark = address.find('!'); mark != std::string_view::npos) {
      target = &sheet(address.substr(0, mark));
      address.remove_prefix(mark + 1);
    }
    const CellPos pos = parse_cell(address)->pos;
    if (content.starts_with('='))
      target->cells.set_formula(pos, formulas.intern(content.substr(1), pos));
    else
      book.store(target->cells.touch(pos), constant(content));
  }
}

void SmallBook::name(std::string_view name, std::string_view refers_to, const Sheet* sheet) {
  book.names.set({std::string(name), sheet, false, CompiledFormula::compile(refers_to, CellPos{})});
}

std::string SmallBook::run(std::string_view formula, std::string_view at, EvaluationMode mode) {
  const CellPos pos = parse_cell(at)->pos;
  if (formula.starts_with('=')) formula.remove_prefix(1);
  const auto compiled = CompiledFormula::compile(formula, pos);
  return embedded::text_of(evaluator_.evaluate(*compiled, sheet("Sheet1"), pos, mode));
}

double SmallBook::number(std::string_view formula) {
  if (formula.starts_with('=')) formula.remove_prefix(1);
  const auto compiled = CompiledFormula::compile(formula, CellPos{20, 10});
  const Operand result =
      evaluator_.evaluate(*compiled, sheet("Sheet1"), CellPos{20, 10}, EvaluationMode::cell);
  const double* number = result.value() ? result.value()->get_if<double>() : nullptr;
  return number ? *number : std::numeric_limits<double>::quiet_NaN();
}

bool SmallBook::ready(const Area& area) {
  const std::string text = area.sheet->name + "!" + address_of(area.rect);
  asked += asked.empty() ? text : " " + text;
  return waiting.empty() || !area.rect.contains(parse_cell(waiting)->pos);
}

Book* SmallBook::find_open_book(std::string_view name) const {
  return text::equal_fold(name, other.name) ? const_cast<Book*>(&other) : nullptr;
}

std::string text_of(const Operand& operand) {
  if (operand.is_missing()) return "(missing)";
  if (operand.is_reference()) {
    std::string result;
    for (const Area& area : operand.areas())
      result += (result.empty() ? "" : ",") + area.sheet->name + "!" + address_of(area.rect);
    return result;
  }
  if (!operand.is_array()) return text_of(view_of(*operand.value()));
  const VariantArray& array = operand.value()->array();
  std::string result = "{";
  for (int row = 1; row <= array.rows(); ++row)
    for (int column = 1; column <= array.columns(); ++column) {
      if (column > 1 || row > 1) result += column > 1 ? "," : ";";
      result += text_of(view_of(array.at(row, column)));
    }
  return result + "}";
}

}  // namespace qto::embedded
