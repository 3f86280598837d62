#pragma once

#include <string_view>

namespace qto::embedded::formats {

/// Reads a text from left to right.
class TextCursor {
 public:
  explicit TextCursor(std::string_view text) : text_(text) {}

  bool at_end() const { return pos_ == text_.size(); }

  /// The next character, or NUL at the end.
  char peek() const { return at_end() ? '\0' : text_[pos_]; }

  bool accept(char c) {
    if (peek() != c || at_end()) return false;
    ++pos_;
    return true;
  }

  /// Steps over spaces and tells whether there were any.
  bool skip_spaces() {
    const std::size_t start = pos_;
    while (accept(' ')) {
    }
    return pos_ > start;
  }

  /// The digits from here on, possibly none.
  std::string_view digits() {
    return take_while([](char c) { return c >= '0' && c <= '9'; });
  }

  /// The ASCII letters from here on, possibly none.
  std::string_view letters() {
    return take_while([](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); });
  }

 private:
  template <typename Predicate>
  std::string_view take_while(Predicate holds) {
    const std::size_t start = pos_;
    while (!at_end() && holds(text_[pos_])) ++pos_;
    return text_.substr(start, pos_ - start);
  }

  std::string_view text_;
  std::size_t pos_ = 0;
};

}  // namespace qto::embedded::formats
