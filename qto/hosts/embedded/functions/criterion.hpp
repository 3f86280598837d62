#pragma once

#include <optional>
#include <string>

#include "qto/hosts/embedded/evaluate/coercion.hpp"
#include "qto/hosts/embedded/functions/wildcard.hpp"

namespace qto::embedded::functions {

/// A condition of the SUMIF family: a value to be equal to, or a text with an operator, such as
/// ">=10", "<>x*" or "=". A number also fits
/// texts that read as that number.
class Criterion {
 public:
  /// How a text without operator is met: by equal texts, or by all that begin with it.
  enum class Texts : std::uint8_t { equal, beginnings };
  Criterion(const ValueView& value, const DateSettings& dates, Texts texts = Texts::equal);
  bool matches(const ValueView& value) const;
  /// True when cells that hold nothing fit.
  bool matches_empty() const { return matches(ValueView()); }

 private:
  enum class Op : std::uint8_t { equal, not_equal, less, less_equal, greater, greater_equal };
  enum class Subject : std::uint8_t { number, text, boolean, error, nothing };

  void read_operand(std::string_view text, bool written_operator, Texts texts);
  bool equals(const ValueView& value) const;
  bool in_order(const ValueView& value) const;
  bool ordered(int order) const;

  DateSettings dates_;
  Op op_ = Op::equal;
  Subject subject_ = Subject::nothing;
  double number_ = 0;
  bool boolean_ = false;
  bool bare_ = false;  ///< an empty text without operator, which empty texts fit too
  ErrorValue error_ = ErrorValue::na;
  std::string text_;
  std::optional<WildcardPattern> pattern_;
};

}  // namespace qto::embedded::functions
