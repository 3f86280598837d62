#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"
#include "qto/model/display_format.hpp"
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

/// The text that a reference to a text stands for.
std::string text_behind(const Variant& result) {
  const auto range = ref_cast<host::Range>(result.object());
  const Variant value = range ? range->value() : result;
  if (const auto* error = value.get_if<ErrorValue>()) return std::string(error_text(*error));
  return value.is_text() ? value.text() : value.is_empty() ? "" : format_value(value);
}

}  // namespace

void Parser::parse_index(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_index");
  position += 2;
  const Tokens list = argument_list(tokens, position);
  if (const auto range = local_eval_range("INDEX(" + args_array_to_string(list) + ")"))
    walk_text("=" + range->Address(), false);
  else
    part_->put_HasError(true);
}

void Parser::parse_offset(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_offset");
  position += 2;
  std::size_t start = position;
  const std::vector<Tokens> args = get_args(tokens, position);
  const Tokens list = argument_list(tokens, start);
  const auto range = local_eval_range("OFFSET(" + join_texts(list) + ")");
  if (!range) {
    part_->put_HasError(true);
    return;
  }
  walk_text("=" + range->Address(), false);
  if (options().ParseOffset() != qtodrillindirectboth) return;
  bool second_pass = true;
  do_parse(args[0], second_pass);
}

void Parser::parse_indirect(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "parse_indirect");
  position += 2;
  const std::vector<Tokens> args = get_args(tokens, position);
  std::string target = text_behind(local_eval(args_array_to_string(args[0])));
  if (args.size() > 1) {
    const Variant style = local_eval(args_array_to_string(args[1]));
    const auto* flag = style.get_if<bool>();
    const auto* number = style.get_if<double>();
    if ((flag && !*flag) || (number && *number == 0))
      target = Main::shared_application()->ConvertFormula(target, host::xlR1C1, host::xlA1);
  }
  parse_indirect_real(target);
  if (options().ParseIndirect() != qtodrillindirectboth) return;
  for (const Tokens argument : args) {
    bool second_pass = true;
    do_parse(argument, second_pass);
  }
}

void Parser::parse_indirect_real(const std::string& text) {
  Procedure proc("Parser", "parse_indirect_real");
  const Ref<ModelParts> before = std::exchange(found_, make_ref<ModelParts>());
  TokenTable table;
  split_formula("=" + text, table);
  bool drill_intelligently = false;
  do_parse(table.tokens, drill_intelligently);
  bool unresolved = false;
  found_->for_each([&](ModelPart& part) { unresolved = unresolved || part.IsUnknown(); });
  found_ = before;
  if (unresolved) {
    part_->put_HasError(true);
    return;
  }
  do_parse(table.tokens, drill_intelligently);
}

}  // namespace qto
