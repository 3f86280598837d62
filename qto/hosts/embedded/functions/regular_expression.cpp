#include "qto/hosts/embedded/functions/regular_expression.hpp"

#include <unicode/uregex.h>

namespace qto::embedded::functions {

namespace {

/// In steps of the engine; keeps patterns that explode from taking more than moments.
constexpr int32_t time_limit = 200;
constexpr int32_t stack_limit = 8 << 20;

URegularExpression* as_regex(void* expression) {
  return static_cast<URegularExpression*>(expression);
}

}  // namespace

void RegularExpression::Close::operator()(void* expression) const {
  uregex_close(as_regex(expression));
}

std::optional<RegularExpression> RegularExpression::compile(std::u16string_view pattern,
                                                            bool ignore_case) {
  UErrorCode status = U_ZERO_ERROR;
  URegularExpression* opened =
      uregex_open(pattern.data(), static_cast<int32_t>(pattern.size()),
                  ignore_case ? UREGEX_CASE_INSENSITIVE : 0, nullptr, &status);
  if (U_FAILURE(status)) return std::nullopt;
  uregex_setTimeLimit(opened, time_limit, &status);
  uregex_setStackLimit(opened, stack_limit, &status);
  RegularExpression result;
  result.expression_.reset(opened);
  return result;
}

std::optional<std::vector<RegularExpression::Match>> RegularExpression::find(
    std::u16string_view text, std::size_t limit) const {
  URegularExpression* regex = as_regex(expression_.get());
  UErrorCode status = U_ZERO_ERROR;
  uregex_setText(regex, text.data(), static_cast<int32_t>(text.size()), &status);
  const int32_t groups = uregex_groupCount(regex, &status);
  std::vector<Match> matches;
  while (matches.size() < limit && uregex_findNext(regex, &status)) {
    Match match;
    for (int32_t group = 0; group <= groups; ++group) {
      const int32_t from = uregex_start(regex, group, &status);
      const int32_t to = uregex_end(regex, group, &status);
      if (group == 0) {
        match.from = static_cast<std::size_t>(from);
        match.to = static_cast<std::size_t>(to);
      }
      match.groups.emplace_back(from < 0 ? std::u16string_view()
                                         : text.substr(static_cast<std::size_t>(from),
                                                       static_cast<std::size_t>(to - from)));
    }
    matches.push_back(std::move(match));
  }
  if (U_FAILURE(status)) return std::nullopt;
  return matches;
}

}  // namespace qto::embedded::functions
