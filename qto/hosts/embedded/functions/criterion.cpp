#include "qto/hosts/embedded/functions/criterion.hpp"

#include <algorithm>
#include <utility>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/compare.hpp"

namespace qto::embedded::functions {

namespace {

constexpr ErrorValue all_errors[] = {ErrorValue::null, ErrorValue::div0, ErrorValue::value,
                                     ErrorValue::ref,  ErrorValue::name, ErrorValue::num,
                                     ErrorValue::na};

std::optional<ErrorValue> error_named(std::string_view text) {
  for (const ErrorValue error : all_errors)
    if (text::equal_ascii_nocase(text, error_text(error))) return error;
  return std::nullopt;
}

/// True for texts that can read as a number at all, so that most need no parsing.
bool may_be_number(std::string_view text) noexcept {
  for (const char c : text)
    if (c >= '0' && c <= '9') return true;
  return false;
}

}  // namespace

Criterion::Criterion(const ValueView& value, const DateSettings& dates, Texts texts)
    : dates_(dates) {
  switch (value.type()) {
    case CellType::empty:
      // A blank cell as criterion looks for zeros.
      subject_ = Subject::number;
      return;
    case CellType::number:
      subject_ = Subject::number;
      number_ = value.number();
      return;
    case CellType::boolean:
      subject_ = Subject::boolean;
      boolean_ = value.boolean();
      return;
    case CellType::error:
      subject_ = Subject::error;
      error_ = value.error();
      return;
    case CellType::text:
      break;
  }
  std::string_view text = value.text();
  constexpr std::pair<std::string_view, Op> operators[] = {
      {"<>", Op::not_equal}, {"<=", Op::less_equal}, {">=", Op::greater_equal},
      {"<", Op::less},       {">", Op::greater},     {"=", Op::equal}};
  for (const auto& [sign, op] : operators) {
    if (!text.starts_with(sign)) continue;
    op_ = op;
    read_operand(text.substr(sign.size()), true, Texts::equal);
    return;
  }
  read_operand(text, false, texts);
}

void Criterion::read_operand(std::string_view text, bool written_operator, Texts texts) {
  if (text.empty()) {
    bare_ = !written_operator;
    subject_ = Subject::nothing;
    return;
  }
  if (may_be_number(text)) {
    if (const auto number = to_number(text, dates_)) {
      subject_ = Subject::number;
      number_ = *number;
      text_ = text;
      return;
    }
  }
  if (text::equal_ascii_nocase(text, "TRUE") || text::equal_ascii_nocase(text, "FALSE")) {
    subject_ = Subject::boolean;
    boolean_ = text.size() == 4;
    return;
  }
  if (const auto error = error_named(text)) {
    subject_ = Subject::error;
    error_ = *error;
    return;
  }
  subject_ = Subject::text;
  const bool beginnings = texts == Texts::beginnings;
  WildcardPattern pattern(beginnings ? std::string(text) + '*' : std::string(text));
  if (pattern.has_wildcards() && (op_ == Op::equal || op_ == Op::not_equal)) {
    pattern_ = std::move(pattern);
  } else {
    text_ = text.find('~') == std::string_view::npos ? std::string(text) : pattern.plain();
    ascii_ = text::is_ascii(text_);
  }
}

std::optional<ValueView> Criterion::only_value() const {
  if (op_ != Op::equal || pattern_) return std::nullopt;
  switch (subject_) {
    case Subject::number:
      return number_;
    case Subject::text:
      return std::string_view(text_);
    case Subject::boolean:
      return boolean_;
    default:
      return std::nullopt;
  }
}

bool Criterion::matches_any(const ValueView& value) const {
  if (op_ == Op::equal) return equals(value);
  if (op_ == Op::not_equal) return !equals(value);
  return in_order(value);
}

bool Criterion::equals(const ValueView& value) const {
  switch (subject_) {
    case Subject::nothing:
      return value.is_empty() || (bare_ && value.is_text() && value.text().empty());
    case Subject::boolean:
      return value.is_boolean() && value.boolean() == boolean_;
    case Subject::error:
      return value.is_error() && value.error() == error_;
    case Subject::text:
      if (!value.is_text()) return false;
      if (pattern_) return pattern_->matches(value.text());
      // Most texts differ in length already; folding changes it beyond ASCII only.
      if (ascii_ && value.text().size() != text_.size()) return false;
      return equal_values(value, std::string_view(text_));
    case Subject::number:
      break;
  }
  if (value.is_number()) return value.number() == number_;
  // A text that reads as the number is equal to it, yet not excluded by "<>".
  if (op_ != Op::equal || !value.is_text() || !may_be_number(value.text())) return false;
  const auto number = to_number(value, dates_);
  return number && *number == number_;
}

bool Criterion::ordered(int order) const {
  switch (op_) {
    case Op::less:
      return order < 0;
    case Op::less_equal:
      return order <= 0;
    case Op::greater:
      return order > 0;
    default:
      return order >= 0;
  }
}

bool Criterion::in_order(const ValueView& value) const {
  switch (subject_) {
    case Subject::number:
      return value.is_number() && ordered(compare_values(value, number_));
    case Subject::boolean:
      return value.is_boolean() && ordered(compare_values(value, boolean_));
    case Subject::text:
      return value.is_text() && ordered(compare_texts(value.text(), text_));
    default:
      return false;
  }
}

}  // namespace qto::embedded::functions
