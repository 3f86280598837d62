#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/utf16_slice.hpp"
#include "qto/hosts/embedded/functions/wildcard.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Operand fn_find(Call& call) {
  const double start = call.number(2, 1);
  const std::u16string wanted = text::to_utf16(call.text(0));
  const std::u16string within = text::to_utf16(call.text(1));
  if (start < 1 || start > static_cast<double>(within.size()) + 1) return ErrorValue::value;
  const std::size_t found = within.find(wanted, to_count(start) - 1);
  if (found == std::u16string::npos) return ErrorValue::value;
  return static_cast<double>(found + 1);
}

Operand fn_search(Call& call) {
  const double start = call.number(2, 1);
  const std::u16string within = text::to_utf16(call.text(1));
  if (start < 1 || start > static_cast<double>(within.size()) + 1) return ErrorValue::value;
  const auto found = WildcardPattern(call.text(0)).find(within, to_count(start) - 1);
  if (!found) return ErrorValue::value;
  return static_cast<double>(*found + 1);
}

Operand fn_substitute(Call& call) {
  const std::string& source = call.text(0);
  const std::string& old_text = call.text(1);
  const std::string& new_text = call.text(2);
  const bool all = call.count() < 4;
  const double wanted = call.number(3, 1);
  if (wanted < 1) return ErrorValue::value;
  if (old_text.empty()) return source;
  std::string result;
  std::size_t from = 0;
  std::size_t seen = 0;
  for (std::size_t at = source.find(old_text); at != std::string::npos;
       at = source.find(old_text, at + old_text.size())) {
    if (!all && ++seen != to_count(wanted)) continue;
    result.append(source, from, at - from);
    result += new_text;
    from = at + old_text.size();
    if (!all) break;
  }
  result.append(source, from);
  if (too_long(result)) return ErrorValue::value;
  return result;
}

Operand fn_replace(Call& call) {
  if (call.number(1) < 1 || call.number(2) < 0) return ErrorValue::value;
  const std::u16string source = text::to_utf16(call.text(0));
  const std::size_t start = std::min(to_count(call.number(1)) - 1, source.size());
  const std::size_t count = std::min(to_count(call.number(2)), source.size() - start);
  std::u16string result = source;
  result.replace(start, count, text::to_utf16(call.text(3)));
  if (result.size() > max_text_length) return ErrorValue::value;
  return text::from_utf16(result);
}

// clang-format off
constexpr FunctionSpec text_search_table[] = {
    {"FIND", 2, 3, plain, {text, text, number}, fn_find, "find, within, [start]",
     "the position of a text in another, letter case counting", "=FIND(\"a\",\"banana\",3)", "4"},
    {"FINDB", 2, 3, plain, {text, text, number}, fn_find, "find, within, [start]",
     "the position of a text in another, letter case counting", "=FINDB(\"n\",\"banana\")", "3"},
    {"REPLACE", 4, 4, plain, {text, number, number, text}, fn_replace,
     "text, start, count, new_text", "the text with some characters exchanged",
     "=REPLACE(\"abcd\",2,2,\"X\")", "aXd"},
    {"REPLACEB", 4, 4, plain, {text, number, number, text}, fn_replace,
     "text, start, count, new_text", "the text with some characters exchanged",
     "=REPLACEB(\"abcd\",2,2,\"X\")", "aXd"},
    {"SEARCH", 2, 3, plain, {text, text, number}, fn_search, "find, within, [start]",
     "the position of a text or pattern in another", "=SEARCH(\"N?n\",\"banana\")", "3"},
    {"SEARCHB", 2, 3, plain, {text, text, number}, fn_search, "find, within, [start]",
     "the position of a text or pattern in another", "=SEARCHB(\"A\",\"banana\")", "2"},
    {"SUBSTITUTE", 3, 4, plain, {text, text, text, number}, fn_substitute,
     "text, old, new, [instance]", "the text with one text put in the place of another",
     "=SUBSTITUTE(\"banana\",\"an\",\"AN\",2)", "banANa"},
};
// clang-format on
static_assert(well_formed(text_search_table));

}  // namespace

std::span<const FunctionSpec> text_search_functions() { return text_search_table; }

}  // namespace qto::embedded::functions
