#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"
#include "qto/parser/argument_values.hpp"
#include "qto/parser/arguments.hpp"
#include "qto/parser/parser.hpp"

namespace qto {

/// The second walk. A reference that could not be resolved rules it out: evaluation would need it.
void Parser::parse_functions_intelligently() {
  Procedure proc("Parser", "parse_functions_intelligently");
  ModelParts::Pass pass(found_);
  while (ModelPart* found = pass.next())
    if (found->IsUnknown()) return;
  found_ = make_ref<ModelParts>();
  part_->create_afresh();
  TokenTable table;
  split_formula(part_->read_formula_again(), table);
  bool second_pass = true;
  do_parse(table.tokens, second_pass);
}

/// Drills one special function. When that fails, the walk goes on behind the function's name, so
/// that every reference in its arguments is followed as if nothing had been asked for.
void Parser::drill_function(Tokens tokens, std::size_t& i) {
  Procedure proc("Parser", "drill_function");
  std::size_t position = i;
  const bool done = proc.step([&] {
    position = i;
    switch (tokens[i - 1].type) {
      case TokenType::if_function:
        return parse_if(tokens, position);
      case TokenType::hlookup:
      case TokenType::vlookup:
        return parse_table_lookup(tokens, position);
      case TokenType::lookup:
        return parse_lookup(tokens, position);
      case TokenType::match:
        return parse_match(tokens, position);
      case TokenType::index:
        return parse_index(tokens, position);
      case TokenType::sumif:
        return parse_sumif(tokens, position);
      case TokenType::indirect:
        return parse_indirect(tokens, position);
      default:
        return parse_offset(tokens, position);
    }
  });
  if (done) i = position;
}

Ref<host::Worksheet> Parser::evaluation_sheet() {
  const auto workbook = part_->Workbook();
  return own_sheet_.empty() ? workbook->Worksheets(1) : workbook->Worksheets(own_sheet_);
}

Variant Parser::local_eval(const std::string& text) {
  Procedure proc("Parser", "local_eval");
  return evaluation_sheet()->Evaluate(text);
}

Ref<host::Range> Parser::local_eval_range(const std::string& text) {
  Procedure proc("Parser", "local_eval_range");
  if (own_sheet_.empty()) return ref_cast<host::Range>(evaluation_sheet()->Evaluate(text).object());
  try {
    return ref_cast<host::Range>(evaluation_sheet()->Evaluate(text).object());
  } catch (const std::exception&) {
    return nullptr;
  }
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

}  // namespace

/// The second branch runs up to the closing parenthesis, commas and all: an array constant in the
/// first branch ends that one early and must not hide what follows.
void Parser::parse_if(Tokens tokens, std::size_t& position) {
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
  const Variant value = value_behind(local_eval(join_texts(condition)));
  if (value.is_error()) {
    for (const Tokens part : {condition, branches[0], branches[1]}) {
      bool second_pass = false;
      do_parse(part, second_pass);
    }
    return;
  }
  bool second_pass = true;
  do_parse(branches[holds(value) ? 0 : 1], second_pass);
  if (options().ParseIf() != qtodrillconditionandused) return;
  second_pass = true;
  do_parse(condition, second_pass);
}

}  // namespace qto
