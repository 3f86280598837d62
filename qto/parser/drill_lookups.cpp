#include <cmath>

#include "qto/automation/error.hpp"
#include "qto/automation/text.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"
#include "qto/parser/arguments.hpp"
#include "qto/parser/parser.hpp"

namespace qto {
namespace {

/// The value itself, read through when an evaluation gave a range.
Variant value_behind(Variant result) {
  const auto range = ref_cast<host::Range>(result.object());
  return range ? range->value() : result;
}

double number_behind(const Variant& value) {
  if (const auto* number = value.get_if<double>()) return *number;
  if (const auto* whole = value.get_if<std::int32_t>()) return *whole;
  if (const auto* flag = value.get_if<bool>()) return *flag ? -1 : 0;
  if (const auto* date = value.get_if<Date>()) return date->serial;
  if (value.is_empty()) return 0;
  if (value.is_text())
    if (const auto number = text::to_number(value.text())) return *number;
  throw NumberedFailure(13, "Type mismatch: a lookup argument is no number");
}

std::int32_t whole_number(const Variant& value) {
  const double rounded = std::nearbyint(number_behind(value));
  if (!(std::abs(rounded) < 2147483648.0)) throw NumberedFailure(6, "Overflow");
  return static_cast<std::int32_t>(rounded);
}

/// What follows the qualifier of a reference text.
std::string_view without_qualifier(std::string_view text) {
  const std::size_t mark = text.rfind('!');
  return mark == std::string_view::npos ? text : text.substr(mark + 1);
}

}  // namespace

/// The value to look up; a date, or a text that reads as one, by its serial number.
Variant Parser::lookup_value(Tokens argument) {
  const std::string text = args_array_to_string(argument);
  const Variant value = value_behind(local_eval(text));
  if (const auto* date = value.get_if<Date>()) return std::nearbyint(date->serial);
  if (!value.is_text() || text::is_numeric(value.text())) return value;
  const Variant serial = local_eval("DATEVALUE(" + text + ")");
  if (const auto* number = serial.get_if<double>()) return std::nearbyint(*number);
  return value;
}

void Parser::parse_table_lookup(Tokens tokens, std::size_t& position) {
  const bool by_column = tokens[position - 1].type == TokenType::vlookup;
  Procedure proc("Parser", by_column ? "parse_vlookup" : "parse_hlookup");
  position += 2;
  const std::vector<Tokens> args = get_args(tokens, position);
  if (args.size() < 3) throw NumberedFailure(9, "a lookup with fewer than three arguments");
  const Variant wanted = lookup_value(args[0]);
  const std::string table_text = args_array_to_string(args[1]);
  const std::string_view address = trim_white_space(without_qualifier(table_text));
  std::string no_book;
  std::string no_sheet;
  const bool usable = is_range(address) || is_name(address, no_book, no_sheet) != TokenType::none;
  const auto table = usable ? local_eval_range(table_text) : nullptr;
  if (!table) {
    part_->put_FormulaContainsConstant(qtoFormulaContainsConstant);
  } else {
    const bool approximate =
        args.size() < 4 ||
        number_behind(value_behind(local_eval(args_array_to_string(args[3])))) != 0;
    const std::int32_t index =
        whole_number(value_behind(local_eval(args_array_to_string(args[2]))));
    const auto line = by_column ? table->Columns(1) : table->Rows(1);
    const auto place = Main::shared_application()->WorksheetFunction()->Match(
        wanted, line, approximate ? 1.0 : 0.0);
    if (!place || *place == 0) return;
    const auto along = static_cast<std::int32_t>(*place);
    add_cell_part(by_column ? table->Cells(along, index) : table->Cells(index, along));
  }
  if (options().ParseLookup() != qtodrillconditionandused) return;
  bool second_pass = true;
  do_parse(args[0], second_pass);
}

void Parser::parse_lookup(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_lookup");
  position += 2;
  const std::vector<Tokens> args = get_args(tokens, position);
  if (args.size() < 2) throw NumberedFailure(9, "LOOKUP with fewer than two arguments");
  const Variant wanted = lookup_value(args[0]);
  std::string vector_text = args_array_to_string(args[1]);
  if (const auto written = local_eval_range(vector_text)) vector_text = written->Address();
  if (vector_text.empty()) {
    part_->put_FormulaContainsConstant(qtoFormulaContainsConstant);
  } else {
    const auto vector = local_eval_range(vector_text);
    if (!vector) return;
    const auto place = Main::shared_application()->WorksheetFunction()->Match(wanted, vector);
    if (!place || *place == 0) return;
    const auto result = args.size() > 2 ? local_eval_range(args_array_to_string(args[2])) : vector;
    if (!result) throw NumberedFailure(91, "the result vector of LOOKUP is no range");
    const auto along = static_cast<std::int32_t>(*place);
    add_cell_part(vector->RowsCount() == 1 ? result->Cells(1, along) : result->Cells(along, 1));
  }
  if (options().ParseLookup() != qtodrillconditionandused) return;
  bool second_pass = true;
  do_parse(args[0], second_pass);
}

void Parser::parse_match(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_match");
  position += 2;
  const std::vector<Tokens> args = get_args(tokens, position);
  bool second_pass = true;
  do_parse(args[0], second_pass);
}

void Parser::parse_sumif(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_sumif");
  position += 2;
  const std::vector<Tokens> args = get_args(tokens, position);
  if (args.size() < 2) throw NumberedFailure(9, "SUMIF with fewer than two arguments");
  const auto range = local_eval_range(args_array_to_string(args[0]));
  if (!range) return;
  const std::string criterion_text = args_array_to_string(args[1]);
  const Variant criterion = criterion_text.starts_with('"') && criterion_text.size() > 1
                                ? Variant(criterion_text.substr(1, criterion_text.size() - 2))
                                : lookup_value(args[1]);
  const auto sums = args.size() > 2 ? local_eval_range(args_array_to_string(args[2])) : nullptr;
  const auto functions = Main::shared_application()->WorksheetFunction();
  // The sum range is paired with the criteria range by position from its top-left cell.
  for (std::int32_t row = 1; row <= range->RowsCount(); ++row) {
    for (std::int32_t column = 1; column <= range->ColumnsCount(); ++column) {
      const auto cell = range->Cells(row, column);
      if (functions->CountIf(cell, criterion) == 0) continue;
      add_cell_part(sums ? sums->Cells(row, column) : cell);
    }
  }
  if (options().ParseSumif() != qtodrillconditionandused) return;
  bool second_pass = true;
  do_parse(args[1], second_pass);
}

}  // namespace qto
