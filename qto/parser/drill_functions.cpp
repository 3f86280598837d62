#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"
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
  part_->Create(part_->UnderlyingObject(), part_->ObjectType());
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

void Parser::parse_if(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_if");
  position += 2;
  bool is_last = false;
  std::vector<Tokens> parts;
  do {
    parts.push_back(take_argument(tokens, position, is_last));
    if (!is_last) ++position;
  } while (!is_last);
  const Tokens condition = parts[0];
  const Variant value = [&] {
    Variant result = local_eval(join_texts(condition));
    const auto range = ref_cast<host::Range>(result.object());
    return range ? range->value() : result;
  }();
  bool plain = false;
  if (value.is_error()) {
    for (const Tokens part : parts) {
      plain = false;
      do_parse(part, plain);
    }
    return;
  }
  const auto* flag = value.get_if<bool>();
  const auto* number = value.get_if<double>();
  // TRUE as a number is -1; any other number counts as false.
  const bool holds = (flag && *flag) || (number && *number == -1);
  const std::size_t branch = holds ? 1 : 2;
  bool second_pass = true;
  if (branch < parts.size()) do_parse(parts[branch], second_pass);
  if (options().ParseIf() != qtodrillconditionandused) return;
  second_pass = true;
  do_parse(condition, second_pass);
}

}  // namespace qto
