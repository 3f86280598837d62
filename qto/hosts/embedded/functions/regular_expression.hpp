#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qto::embedded::functions {

/// A regular expression over UTF-16 text. Work is bounded: a search that takes too long finds
/// nothing and says so.
class RegularExpression {
 public:
  /// Nothing when the pattern is malformed.
  static std::optional<RegularExpression> compile(std::u16string_view pattern, bool ignore_case);

  /// The groups of one match; the first is the whole match.
  struct Match {
    std::size_t from = 0;
    std::size_t to = 0;
    std::vector<std::u16string> groups;
  };
  /// Up to `limit` matches from the start of the text; nothing when the search was broken off.
  std::optional<std::vector<Match>> find(std::u16string_view text, std::size_t limit) const;

 private:
  struct Close {
    void operator()(void* expression) const;
  };
  std::unique_ptr<void, Close> expression_;
};

}  // namespace qto::embedded::functions
