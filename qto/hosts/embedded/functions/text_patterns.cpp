#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/build_array.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/regular_expression.hpp"
#include "qto/hosts/embedded/functions/utf16_slice.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

constexpr std::size_t all_matches = static_cast<std::size_t>(-1);

/// The matches of argument 1 as a pattern in argument 0; the case argument is 0 or 1.
Outcome<std::vector<RegularExpression::Match>> matches_of(Call& call, const std::u16string& text,
                                                          int case_at, std::size_t limit) {
  const double ignore_case = std::trunc(call.number(case_at, 0));
  if (ignore_case != 0 && ignore_case != 1) return ErrorValue::value;
  const auto expression =
      RegularExpression::compile(text::to_utf16(call.text(1)), ignore_case == 1);
  if (!expression) return ErrorValue::value;
  auto matches = expression->find(text, limit);
  if (!matches) return ErrorValue::value;
  return *std::move(matches);
}

Operand fn_regextest(Call& call) {
  const std::u16string text = text::to_utf16(call.text(0));
  const auto matches = matches_of(call, text, 2, 1);
  return matches ? Operand(!matches->empty()) : Operand(matches.error());
}

Operand fn_regexextract(Call& call) {
  const double mode = std::trunc(call.number(2, 0));
  if (mode < 0 || mode > 2) return ErrorValue::value;
  const std::u16string text = text::to_utf16(call.text(0));
  const auto matches = matches_of(call, text, 3, mode == 1 ? all_matches : 1);
  if (!matches) return matches.error();
  if (matches->empty()) return ErrorValue::na;
  const auto& first = matches->front();
  if (mode == 0) return text::from_utf16(first.groups[0]);
  if (mode == 1)
    return build_array(call.context(), static_cast<int>(matches->size()), 1, [&](int row, int) {
      return Variant(text::from_utf16((*matches)[static_cast<std::size_t>(row)].groups[0]));
    });
  if (first.groups.size() < 2) return ErrorValue::value;
  return build_array(
      call.context(), 1, static_cast<int>(first.groups.size()) - 1, [&](int, int column) {
        return Variant(text::from_utf16(first.groups[static_cast<std::size_t>(column) + 1]));
      });
}

/// The replacement with $1 or ${1} standing for groups.
std::u16string expanded(const std::u16string& pattern, const RegularExpression::Match& match) {
  std::u16string result;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != u'$' || i + 1 == pattern.size()) {
      result += pattern[i];
      continue;
    }
    std::size_t at = i + 1;
    const bool braces = pattern[at] == u'{';
    if (braces) ++at;
    std::size_t group = 0;
    const std::size_t digits = at;
    while (at < pattern.size() && pattern[at] >= u'0' && pattern[at] <= u'9' && group < 1000)
      group = group * 10 + static_cast<std::size_t>(pattern[at++] - u'0');
    const bool closed = !braces || (at < pattern.size() && pattern[at] == u'}');
    if (at == digits || !closed || group >= match.groups.size()) {
      result += pattern[i];
      continue;
    }
    result += match.groups[group];
    i = braces ? at : at - 1;
  }
  return result;
}

Operand fn_regexreplace(Call& call) {
  const double instance = std::trunc(call.number(3, 0));
  const std::u16string text = text::to_utf16(call.text(0));
  const std::u16string replacement = text::to_utf16(call.text(2));
  const auto matches = matches_of(call, text, 4, all_matches);
  if (!matches) return matches.error();
  const auto count = static_cast<double>(matches->size());
  const double wanted = instance < 0 ? count + instance + 1 : instance;
  std::u16string result;
  std::size_t from = 0;
  for (std::size_t i = 0; i < matches->size(); ++i) {
    if (instance != 0 && static_cast<double>(i + 1) != wanted) continue;
    const auto& match = (*matches)[i];
    result.append(text, from, match.from - from);
    result += expanded(replacement, match);
    from = match.to;
    if (result.size() > max_text_length) return ErrorValue::value;
  }
  result.append(text, from);
  if (result.size() > max_text_length) return ErrorValue::value;
  return text::from_utf16(result);
}

// clang-format off
constexpr FunctionSpec text_pattern_table[] = {
    {"REGEXEXTRACT", 2, 4, plain, {text, text, number, number}, fn_regexextract,
     "text, pattern, [mode], [ignore_case]",
     "what a pattern matches: the first, all, or its groups", "=REGEXEXTRACT(\"ab12\",\"[0-9]+\")",
     "12"},
    {"REGEXREPLACE", 3, 5, plain, {text, text, text, number, number}, fn_regexreplace,
     "text, pattern, replacement, [instance], [ignore_case]",
     "the text with matches of a pattern replaced", "=REGEXREPLACE(\"a1b2\",\"[0-9]\",\"#\")",
     "a#b#"},
    {"REGEXTEST", 2, 3, plain, {text, text, number}, fn_regextest, "text, pattern, [ignore_case]",
     "true when a pattern matches part of the text", "=REGEXTEST(\"Abc\",\"^a\",1)", "TRUE"},
};
// clang-format on
static_assert(well_formed(text_pattern_table));

}  // namespace

std::span<const FunctionSpec> text_pattern_functions() { return text_pattern_table; }

}  // namespace qto::embedded::functions
