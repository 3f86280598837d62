#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/parser/argument_values.hpp"
#include "qto/parser/arguments.hpp"
#include "qto/parser/parser.hpp"

namespace qto {
namespace {

/// The tokens of a whole argument list; on return `position` is on the call's closing ")".
Tokens argument_list(Tokens tokens, std::size_t& position) {
  const std::size_t start = position;
  bool is_last = false;
  for (;;) {
    take_argument(tokens, position, is_last);
    if (is_last) return tokens.subspan(start - 1, position - start);
    ++position;
  }
}

/// An array, or what has no value here because a parameter of a LAMBDA stands in it: all references
/// of the call are followed then.
bool gives_several(const Variant& value) {
  const auto* error = value.get_if<ErrorValue>();
  return value.is_array() || (error && *error == ErrorValue::name);
}

}  // namespace

DrillVerdict Parser::parse_index(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_index");
  const std::size_t start = position;
  position += 2;
  const Tokens list = argument_list(tokens, position);
  const std::string text = text_to_evaluate(list, "INDEX");
  const auto range = local_eval_range(text);
  if (!range && gives_several(local_eval(text))) {
    position = start;
    return DrillVerdict::failed;
  }
  if (!range) {
    part_->put_HasError(true);
    return DrillVerdict::no_reference;
  }
  walk_text("=" + range->Address(), false);
  return DrillVerdict::decided;
}

DrillVerdict Parser::parse_offset(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_offset");
  position += 2;
  std::size_t start = position;
  const std::vector<Tokens> args = get_args(tokens, position);
  const Tokens list = argument_list(tokens, start);
  const auto range = local_eval_range(text_to_evaluate(list, "OFFSET"));
  if (!range) {
    part_->put_HasError(true);
    return DrillVerdict::no_reference;
  }
  walk_text("=" + range->Address(), false);
  if (options().parse_offset == qtodrillindirectboth) {
    bool second_pass = true;
    do_parse(args[0], second_pass);
  }
  return DrillVerdict::decided;
}

DrillVerdict Parser::parse_indirect(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_indirect");
  position += 2;
  const std::vector<Tokens> args = get_args(tokens, position);
  std::string target = text_behind(argument_value(args[0]));
  if (args.size() > 1 && !flag_behind(argument_value(args[1])))
    target = application().ConvertFormula(target, host::xlR1C1, host::xlA1,
                                          ref_cast<host::Range>(part_->UnderlyingObject()));
  const DrillVerdict verdict = parse_indirect_real(target);
  if (options().parse_indirect != qtodrillindirectboth) return verdict;
  for (const Tokens argument : args) {
    bool second_pass = true;
    do_parse(argument, second_pass);
  }
  return verdict;
}

DrillVerdict Parser::parse_indirect_real(const std::string& text) {
  Procedure proc("Parser", "parse_indirect_real");
  TokenTable table;
  split_formula("=" + text, table);
  const Ref<ModelParts> before = found_;
  bool drill_intelligently = false;
  bool unresolved = false;
  try {
    found_ = make_ref<ModelParts>();
    do_parse(table.tokens, drill_intelligently);
    unresolved = found_->any_unknown();
  } catch (...) {
    found_ = before;
    throw;
  }
  found_ = before;
  if (unresolved) {
    part_->put_HasError(true);
    return DrillVerdict::no_reference;
  }
  do_parse(table.tokens, drill_intelligently);
  return DrillVerdict::decided;
}

}  // namespace qto
