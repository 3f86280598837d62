#include "qto/hosts/embedded/functions/wildcard.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"

namespace qto::embedded::functions {

namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

char16_t lower_ascii(char c) noexcept {
  return static_cast<char16_t>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

}  // namespace

WildcardPattern::WildcardPattern(std::string_view pattern) {
  const std::u16string units = text::to_utf16(text::fold_case(pattern));
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (units[i] == u'~' && i + 1 < units.size()) {
      const char16_t next = units[i + 1];
      if (next == u'*' || next == u'?' || next == u'~') ++i;
      tokens_.push_back({Kind::unit, units[i]});
    } else if (units[i] == u'*') {
      wildcards_ = true;
      if (tokens_.empty() || tokens_.back().kind != Kind::any_many)
        tokens_.push_back({Kind::any_many, 0});
    } else if (units[i] == u'?') {
      wildcards_ = true;
      tokens_.push_back({Kind::any_one, 0});
    } else {
      tokens_.push_back({Kind::unit, units[i]});
    }
  }
}

// On a mismatch the last * takes one character more; earlier ones never need to.
template <class Char, class Fold>
bool WildcardPattern::fits(const Char* text, std::size_t size, bool whole, Fold fold) const {
  std::size_t at = 0;
  std::size_t token = 0;
  std::size_t star = none;
  std::size_t star_at = 0;
  for (;;) {
    if (token == tokens_.size() && (!whole || at == size)) return true;
    if (token < tokens_.size()) {
      const Token& wanted = tokens_[token];
      if (wanted.kind == Kind::any_many) {
        star = token++;
        star_at = at;
        continue;
      }
      if (at < size && (wanted.kind == Kind::any_one || wanted.unit == fold(text[at]))) {
        ++token;
        ++at;
        continue;
      }
    }
    if (star == none || star_at >= size) return false;
    token = star + 1;
    at = ++star_at;
  }
}

bool WildcardPattern::matches(std::string_view text) const {
  if (text::is_ascii(text)) return fits(text.data(), text.size(), true, lower_ascii);
  const std::u16string folded = text::to_utf16(text::fold_case(text));
  return fits(folded.data(), folded.size(), true, [](char16_t unit) { return unit; });
}

std::optional<std::size_t> WildcardPattern::find(std::u16string_view text,
                                                 std::size_t start) const {
  // Folding one unit at a time keeps positions; it is what the plain comparison needs as well.
  std::u16string folded = text::to_utf16(text::fold_case(text::from_utf16(text)));
  if (folded.size() != text.size()) folded.assign(text);
  for (std::size_t at = start; at <= folded.size(); ++at)
    if (fits(folded.data() + at, folded.size() - at, false, [](char16_t unit) { return unit; }))
      return at;
  return std::nullopt;
}

std::string WildcardPattern::plain() const {
  std::u16string units;
  for (const Token& token : tokens_) units.push_back(token.unit);
  return text::from_utf16(units);
}

}  // namespace qto::embedded::functions
