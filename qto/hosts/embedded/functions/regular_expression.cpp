#define PCRE2_CODE_UNIT_WIDTH 16
#include "qto/hosts/embedded/functions/regular_expression.hpp"

#include <pcre2.h>

#include <algorithm>
#include <new>

namespace qto::embedded::functions {

namespace {

/// What keeps patterns that explode from taking more than moments: steps of one search, KiB that it
/// remembers to come back to, and the size and depth of a pattern.
constexpr std::size_t step_limit = 2'000'000;
constexpr std::uint32_t memory_limit = 16 << 10;
constexpr std::size_t pattern_limit = 32'767;
constexpr std::uint32_t depth_limit = 200;

constexpr std::uint32_t compile_options = PCRE2_UTF | PCRE2_UCP | PCRE2_NEVER_BACKSLASH_C;

struct Free {
  void operator()(pcre2_compile_context* context) const { pcre2_compile_context_free(context); }
  void operator()(pcre2_match_context* context) const { pcre2_match_context_free(context); }
  void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
};
template <class Thing>
using Owned = std::unique_ptr<Thing, Free>;

/// Made by the library, which gives null only when memory is short.
template <class Thing>
Owned<Thing> owned(Thing* made) {
  if (!made) throw std::bad_alloc();
  return Owned<Thing>(made);
}

PCRE2_SPTR units_of(std::u16string_view text) { return reinterpret_cast<PCRE2_SPTR>(text.data()); }

std::size_t after_character(std::u16string_view text, std::size_t at) {
  const bool pair = text[at] >= 0xD800 && text[at] < 0xDC00 && at + 1 < text.size();
  return at + (pair ? 2 : 1);
}

RegularExpression::Match match_at(std::u16string_view text, pcre2_match_data* data) {
  const PCRE2_SIZE* const bounds = pcre2_get_ovector_pointer(data);
  RegularExpression::Match match;
  match.from = bounds[0];
  match.to = bounds[1];
  for (std::uint32_t group = 0; group < pcre2_get_ovector_count(data); ++group) {
    const PCRE2_SIZE from = bounds[2 * group];
    const PCRE2_SIZE to = bounds[2 * group + 1];
    match.groups.emplace_back(from == PCRE2_UNSET ? std::u16string_view()
                                                  : text.substr(from, to - from));
  }
  return match;
}

}  // namespace

void RegularExpression::Close::operator()(void* expression) const {
  pcre2_code_free(static_cast<pcre2_code*>(expression));
}

std::optional<RegularExpression> RegularExpression::compile(std::u16string_view pattern,
                                                            bool ignore_case) {
  const auto context = owned(pcre2_compile_context_create(nullptr));
  pcre2_set_max_pattern_length(context.get(), pattern_limit);
  pcre2_set_parens_nest_limit(context.get(), depth_limit);
  pcre2_set_newline(context.get(), PCRE2_NEWLINE_ANY);
  int error = 0;
  PCRE2_SIZE place = 0;
  RegularExpression result;
  result.expression_.reset(pcre2_compile(units_of(pattern), pattern.size(),
                                         compile_options | (ignore_case ? PCRE2_CASELESS : 0),
                                         &error, &place, context.get()));
  if (!result.expression_) return std::nullopt;
  return result;
}

std::optional<std::vector<RegularExpression::Match>> RegularExpression::find(
    std::u16string_view text, std::size_t limit) const {
  const auto* const code = static_cast<const pcre2_code*>(expression_.get());
  const auto context = owned(pcre2_match_context_create(nullptr));
  const auto data = owned(pcre2_match_data_create_from_pattern(code, nullptr));
  pcre2_set_heap_limit(context.get(), memory_limit);
  std::vector<Match> matches;
  for (std::size_t at = 0; at <= text.size() && matches.size() < limit;) {
    // Many matches share what one may take; looking through the text is not counted against them.
    const std::size_t steps = step_limit / (matches.size() + 1) + 4 * (text.size() - at);
    pcre2_set_match_limit(context.get(), static_cast<std::uint32_t>(steps));
    const int found =
        pcre2_match(code, units_of(text), text.size(), at, matches.empty() ? 0 : PCRE2_NO_UTF_CHECK,
                    data.get(), context.get());
    if (found == PCRE2_ERROR_NOMATCH) break;
    if (found < 0) return std::nullopt;
    const PCRE2_SIZE* const bounds = pcre2_get_ovector_pointer(data.get());
    if (bounds[0] < at || bounds[1] < bounds[0]) return std::nullopt;
    matches.push_back(match_at(text, data.get()));
    const std::size_t end = bounds[1];
    at = bounds[0] < end ? end : end < text.size() ? after_character(text, end) : end + 1;
  }
  return matches;
}

}  // namespace qto::embedded::functions
