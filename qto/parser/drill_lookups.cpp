#include <algorithm>
#include <cmath>
#include <utility>

#include "qto/automation/error.hpp"
#include "qto/automation/text.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/parser/argument_values.hpp"
#include "qto/parser/arguments.hpp"
#include "qto/parser/parser.hpp"

namespace qto {
namespace {

/// True for one reference or name with its qualifiers and nothing else.
bool is_one_reference(Tokens argument) {
  bool found = false;
  for (const Token& token : argument) {
    switch (token.type) {
      case TokenType::path_name:
      case TokenType::workbook:
      case TokenType::worksheet:
        continue;
      case TokenType::end_token:
        if (std::string_view("[]!\\/").find(token.text) != std::string_view::npos) continue;
        return false;
      case TokenType::range:
      case TokenType::workbook_name:
      case TokenType::worksheet_name:
        if (std::exchange(found, true)) return false;
        continue;
      default:
        return false;
    }
  }
  return found;
}

/// How far into a range, counted from 1, a criterion has to be tested: beyond the used cells all
/// are blank, so that one of them tells for all.
CellPos last_to_test(const host::Range& range, host::WorksheetFunction& functions,
                     const Variant& criterion) {
  const Rect all = range.block();
  const Rect used = range.Worksheet()->UsedRange()->block();
  const CellPos whole{all.rows(), all.columns()};
  const CellPos within{std::clamp(used.last.row - all.first.row + 1, 0, whole.row),
                       std::clamp(used.last.column - all.first.column + 1, 0, whole.column)};
  if (within == whole) return whole;
  return functions.CountIf(range.Cells(whole.row, whole.column), criterion) == 0 ? within : whole;
}

/// A blank that is looked for counts as 0.
Variant zero_for_blank(Variant wanted) {
  return wanted.is_empty() ? Variant(0.0) : std::move(wanted);
}

/// Several values lead to several places: the walk goes on behind the function's name, so that all
/// references of the call are followed.
DrillVerdict follow_whole(std::size_t& position, std::size_t start) {
  position = start;
  return DrillVerdict::failed;
}

}  // namespace

Variant Parser::argument_value(Tokens argument) { return local_eval(text_to_evaluate(argument)); }

/// The value to look up; a date, or a text that reads as one, by its serial number.
Variant Parser::lookup_value(Tokens argument) {
  const std::string text = text_to_evaluate(argument);
  const Variant value = argument_value(argument);
  if (const auto* date = value.get_if<Date>()) return std::nearbyint(date->serial);
  if (!value.is_text() || text::is_numeric(value.text())) return value;
  const Variant serial = local_eval("DATEVALUE(" + text + ")");
  if (const auto* number = serial.get_if<double>()) return std::nearbyint(*number);
  return value;
}

DrillVerdict Parser::parse_table_lookup(Tokens tokens, std::size_t& position) {
  const bool by_column = tokens[position - 1].type == TokenType::vlookup;
  Procedure proc("Parser", by_column ? "parse_vlookup" : "parse_hlookup");
  const std::size_t start = position;
  position += 2;
  const std::vector<Tokens> args = get_args(tokens, position);
  if (args.size() < 3) throw NumberedFailure(9, "a lookup with fewer than three arguments");
  const Variant wanted = zero_for_blank(lookup_value(args[0]));
  if (wanted.is_array()) return follow_whole(position, start);
  const bool usable = is_one_reference(args[1]);
  if (!usable) {
    part_->put_FormulaContainsConstant(qtoFormulaContainsConstant);
  } else {
    const auto table = local_eval_range(text_to_evaluate(args[1]));
    const bool approximate = args.size() < 4 || flag_behind(argument_value(args[3]));
    const std::int32_t index = whole_number_behind(argument_value(args[2]));
    if (!table) return DrillVerdict::not_found;
    const auto line = by_column ? table->Columns(1) : table->Rows(1);
    const auto place =
        application().WorksheetFunction()->Match(wanted, line, approximate ? 1.0 : 0.0);
    if (!place || *place == 0) return DrillVerdict::not_found;
    const auto along = static_cast<std::int32_t>(*place);
    add_cell_part(by_column ? table->Cells(along, index) : table->Cells(index, along));
  }
  if (options().parse_lookup == qtodrillconditionandused) {
    bool second_pass = true;
    do_parse(args[0], second_pass);
  }
  return usable ? DrillVerdict::decided : DrillVerdict::no_table;
}

DrillVerdict Parser::parse_lookup(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_lookup");
  const std::size_t start = position;
  position += 2;
  const std::vector<Tokens> args = get_args(tokens, position);
  if (args.size() < 2) throw NumberedFailure(9, "LOOKUP with fewer than two arguments");
  const Variant wanted = zero_for_blank(lookup_value(args[0]));
  if (wanted.is_array()) return follow_whole(position, start);
  std::string vector_text = text_to_evaluate(args[1]);
  if (const auto written = local_eval_range(vector_text)) vector_text = written->Address();
  const bool usable = !vector_text.empty();
  if (!usable) {
    part_->put_FormulaContainsConstant(qtoFormulaContainsConstant);
  } else {
    const auto vector = local_eval_range(vector_text);
    if (!vector) return DrillVerdict::not_found;
    const auto place = application().WorksheetFunction()->Match(wanted, vector);
    if (!place || *place == 0) return DrillVerdict::not_found;
    const auto result = args.size() > 2 ? local_eval_range(text_to_evaluate(args[2])) : vector;
    if (!result) throw NumberedFailure(91, "the result vector of LOOKUP is no range");
    const auto along = static_cast<std::int32_t>(*place);
    add_cell_part(vector->RowsCount() == 1 ? result->Cells(1, along) : result->Cells(along, 1));
  }
  if (options().parse_lookup == qtodrillconditionandused) {
    bool second_pass = true;
    do_parse(args[0], second_pass);
  }
  return usable ? DrillVerdict::decided : DrillVerdict::no_table;
}

DrillVerdict Parser::parse_match(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_match");
  position += 2;
  const std::vector<Tokens> args = get_args(tokens, position);
  bool second_pass = true;
  do_parse(args[0], second_pass);
  return DrillVerdict::decided;
}

DrillVerdict Parser::parse_sumif(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_sumif");
  const std::size_t start = position;
  position += 2;
  const std::vector<Tokens> args = get_args(tokens, position);
  if (args.size() < 2) throw NumberedFailure(9, "SUMIF with fewer than two arguments");
  const auto range = local_eval_range(text_to_evaluate(args[0]));
  if (!range) return DrillVerdict::no_table;
  const std::string criterion_text = args_array_to_string(args[1]);
  const Variant criterion = criterion_text.starts_with('"') && criterion_text.size() > 1
                                ? Variant(criterion_text.substr(1, criterion_text.size() - 2))
                                : lookup_value(args[1]);
  if (criterion.is_array()) return follow_whole(position, start);
  const auto sums = args.size() > 2 ? local_eval_range(text_to_evaluate(args[2])) : nullptr;
  const auto functions = application().WorksheetFunction();
  const CellPos last = last_to_test(*range, *functions, criterion);
  // The sum range is paired with the criteria range by position from its top-left cell.
  for (std::int32_t row = 1; row <= last.row; ++row) {
    for (std::int32_t column = 1; column <= last.column; ++column) {
      const auto cell = range->Cells(row, column);
      if (functions->CountIf(cell, criterion) == 0) continue;
      add_cell_part(sums ? sums->Cells(row, column) : cell);
    }
  }
  if (options().parse_sumif == qtodrillconditionandused) {
    bool second_pass = true;
    do_parse(args[1], second_pass);
  }
  return DrillVerdict::decided;
}

}  // namespace qto
