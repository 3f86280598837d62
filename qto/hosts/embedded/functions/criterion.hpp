#pragma once

#include <optional>
#include <string>

#include "qto/hosts/embedded/evaluate/coercion.hpp"
#include "qto/hosts/embedded/evaluate/value_view.hpp"
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
  bool matches(const ValueView& value) const {
    // Nearly all comparisons are of two numbers.
    if (subject_ != Subject::number || !value.is_number()) return matches_any(value);
    switch (op_) {
      case Op::equal:
        return value.number() == number_;
      case Op::not_equal:
        return value.number() != number_;
      case Op::less:
        return value.number() < number_;
      case Op::less_equal:
        return value.number() <= number_;
      case Op::greater:
        return value.number() > number_;
      default:
        return value.number() >= number_;
    }
  }
  /// True when cells that hold nothing fit.
  bool matches_empty() const { return matches(ValueView()); }
  /// The value that everything that fits is equal to; none for patterns and comparisons. With a
  /// number also texts fit that read as that number.
  std::optional<ValueView> only_value() const;

 private:
  enum class Op : std::uint8_t { equal, not_equal, less, less_equal, greater, greater_equal };
  enum class Subject : std::uint8_t { number, text, boolean, error, nothing };

  void read_operand(std::string_view text, bool written_operator, Texts texts);
  bool matches_any(const ValueView& value) const;
  bool equals(const ValueView& value) const;
  bool in_order(const ValueView& value) const;
  bool ordered(int order) const;

  DateSettings dates_;
  Op op_ = Op::equal;
  Subject subject_ = Subject::nothing;
  double number_ = 0;
  bool boolean_ = false;
  bool ascii_ = false;  ///< of text_
  bool bare_ = false;   ///< an empty text without operator, which empty texts fit too
  ErrorValue error_ = ErrorValue::na;
  std::string text_;
  std::optional<WildcardPattern> pattern_;
};

}  // namespace qto::embedded::functions
