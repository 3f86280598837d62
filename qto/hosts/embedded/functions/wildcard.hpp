#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qto::embedded::functions {

/// A pattern with * for any text, ? for any character and ~ before a character meant literally.
/// Letter case is ignored; characters are UTF-16 units.
class WildcardPattern {
 public:
  explicit WildcardPattern(std::string_view pattern);
  /// True when the whole text fits.
  bool matches(std::string_view text) const;
  /// The position from 0 of the first stretch that fits, from `start` on; nothing if none.
  std::optional<std::size_t> find(std::u16string_view text, std::size_t start) const;
  /// True when the pattern says more than its plain text.
  bool has_wildcards() const noexcept { return wildcards_; }
  /// The pattern without wildcards and ~, folded.
  std::string plain() const;

 private:
  enum class Kind : std::uint8_t { unit, any_one, any_many };
  struct Token {
    Kind kind;
    char16_t unit;
  };
  template <class Char, class Fold>
  bool fits(const Char* text, std::size_t size, bool whole, Fold fold) const;

  std::vector<Token> tokens_;
  bool wildcards_ = false;
};

}  // namespace qto::embedded::functions
