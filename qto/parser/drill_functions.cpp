#include <optional>

#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/parser/argument_values.hpp"
#include "qto/parser/arguments.hpp"
#include "qto/parser/let_bindings.hpp"
#include "qto/parser/parser.hpp"

namespace qto {

/// The second walk. A reference that could not be resolved rules it out: evaluation would need it.
void Parser::parse_functions_intelligently() {
  Procedure proc("Parser", "parse_functions_intelligently");
  if (found_->any_unknown()) return verdicts_.add_unresolved_formula();
  found_ = make_ref<ModelParts>();
  part_->create_afresh();
  TokenTable table;
  split_formula(part_->read_formula_again(), table);
  bindings_ = has_bindings(table.tokens) ? Tokens(table.tokens) : Tokens();
  bool second_pass = true;
  do_parse(table.tokens, second_pass);
  bindings_ = {};
}

/// Drills one special function. When that fails, the walk goes on behind the function's name, so
/// that every reference in its arguments is followed as if nothing had been asked for.
void Parser::drill_function(Tokens tokens, std::size_t& i) {
  Procedure proc("Parser", "drill_function");
  const TokenType function = tokens[i - 1].type;
  std::size_t position = i;
  DrillVerdict verdict = DrillVerdict::failed;
  bool done = false;  // also after an outcome that goes on, only what was drilled is passed over
  (void)proc.step([&] {
    position = i;
    verdict = drill_by_type(tokens, position);
    done = true;
  });
  if (done) i = position;
  verdicts_.add(function, verdict);
}

DrillVerdict Parser::drill_by_type(Tokens tokens, std::size_t& i) {
  switch (tokens[i - 1].type) {
    case TokenType::if_function:
      return parse_if(tokens, i);
    case TokenType::hlookup:
    case TokenType::vlookup:
      return parse_table_lookup(tokens, i);
    case TokenType::lookup:
      return parse_lookup(tokens, i);
    case TokenType::match:
      return parse_match(tokens, i);
    case TokenType::index:
      return parse_index(tokens, i);
    case TokenType::sumif:
      return parse_sumif(tokens, i);
    case TokenType::indirect:
      return parse_indirect(tokens, i);
    default:
      return parse_offset(tokens, i);
  }
}

Ref<host::Worksheet> Parser::evaluation_sheet() {
  const auto workbook = part_->Workbook();
  if (!workbook) throw NumberedFailure(91, "the part lies in no workbook");
  return own_sheet_.empty() ? workbook->Worksheets(1) : workbook->Worksheets(own_sheet_);
}

/// What a piece of the formula reads as, or a call with it as the argument list. Pieces of texts
/// that were made on the way, such as the target of INDIRECT, stand by themselves.
std::string Parser::text_to_evaluate(Tokens piece, std::string_view function) const {
  std::string text = args_array_to_string(piece);
  if (!function.empty()) text = std::string(function) + "(" + text + ")";
  const bool inside = !bindings_.empty() && !piece.empty() && piece.data() >= bindings_.data() &&
                      piece.data() < bindings_.data() + bindings_.size();
  return inside ? with_bindings(bindings_, piece, std::move(text)) : text;
}

/// What a piece of the formula being parsed gives in its cell; outside cells, on the sheet.
Variant Parser::local_eval(const std::string& text) {
  Procedure proc("Parser", "local_eval");
  return proc.need([&]() -> Variant {
    if (const auto& own = part_->sheet_record())
      return own->sheet->value_in_cell(part_->cell(), text);
    const Variant result = evaluation_sheet()->Evaluate(text);
    const auto range = ref_cast<host::Range>(result.object());
    return range ? range->value() : result;
  });
}

Ref<host::Range> Parser::local_eval_range(const std::string& text) {
  Procedure proc("Parser", "local_eval_range");
  if (own_sheet_.empty())
    return proc.need(
        [&] { return ref_cast<host::Range>(evaluation_sheet()->Evaluate(text).object()); });
  Ref<host::Range> found;
  (void)host::tried([&] {
    if (const auto& own = part_->sheet_record())
      found = own->sheet->range_in_cell(part_->cell(), text);
    else
      found = ref_cast<host::Range>(evaluation_sheet()->Evaluate(text).object());
  });
  return found;
}

void Parser::add_cell_part(const Ref<host::Range>& cell) {
  auto part = make_ref<ModelPart>();
  part->create_cell(record_of(cell->Worksheet()), cell->block().first);
  found_->AddExisting(part);
}

/// Walks a formula that was made from a result, such as "=$B$3".
void Parser::walk_text(const std::string& formula, bool second_pass) {
  TokenTable table;
  split_formula(formula, table);
  do_parse(table.tokens, second_pass);
}

namespace {

/// Takes at least one token and then all up to the one before which `ends` says stop; on return
/// `position` is on that one.
template <class Ends>
Tokens take_until(Tokens tokens, std::size_t& position, int depth, Ends&& ends) {
  const std::size_t start = position;
  do {
    if (position >= tokens.size())
      throw NumberedFailure(9, "an IF without its closing parenthesis");
    const std::string_view text = tokens[position - 1].text;
    if (text == "(") ++depth;
    if (text == ")") --depth;
    ++position;
  } while (!ends(tokens[position - 1].text, depth));
  return tokens.subspan(start - 1, position - start);
}

/// TRUE as a number is -1; any other number, a text or nothing counts as false.
bool holds(const Variant& value) {
  if (const auto* flag = value.get_if<bool>()) return *flag;
  if (const auto* number = value.get_if<double>()) return *number == -1;
  const auto* whole = value.get_if<std::int32_t>();
  return whole && *whole == -1;
}

/// Which branch a condition chooses; none when it is an error value, or an array of which some
/// elements choose the one and some the other.
std::optional<bool> decides(const Variant& condition) {
  if (condition.is_error()) return {};
  if (!condition.is_array()) return holds(condition);
  std::optional<bool> all;
  const VariantArray& array = condition.array();
  for (std::int32_t row = 1; row <= array.rows(); ++row) {
    for (std::int32_t column = 1; column <= array.columns(); ++column) {
      const Variant& element = array.at(row, column);
      if (element.is_error() || holds(element) != all.value_or(holds(element))) return {};
      all = holds(element);
    }
  }
  return all;
}

}  // namespace

/// The second branch runs up to the closing parenthesis, commas and all: an array constant in the
/// first branch ends that one early and must not hide what follows.
DrillVerdict Parser::parse_if(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_if");
  position += 2;
  const Tokens condition = take_until(
      tokens, position, 0, [](std::string_view text, int depth) { return text == "," && !depth; });
  ++position;
  Tokens branches[2];
  branches[0] = take_until(tokens, position, 0, [](std::string_view text, int depth) {
    return (text == "," || text == ")") && depth == 0;
  });
  if (tokens[position - 1].text == ",") {
    ++position;
    branches[1] = take_until(tokens, position, 1, [](std::string_view text, int depth) {
      return text == ")" && depth == 1;
    });
  }
  const Variant value = local_eval(text_to_evaluate(condition));
  const std::optional<bool> chosen = decides(value);
  if (!chosen) {
    for (const Tokens part : {condition, branches[0], branches[1]}) {
      bool second_pass = false;
      do_parse(part, second_pass);
    }
    return value.is_error() ? DrillVerdict::condition_error : DrillVerdict::both_branches;
  }
  bool second_pass = true;
  do_parse(branches[*chosen ? 0 : 1], second_pass);
  if (options().parse_if == qtodrillconditionandused) {
    second_pass = true;
    do_parse(condition, second_pass);
  }
  return DrillVerdict::decided;
}

}  // namespace qto
