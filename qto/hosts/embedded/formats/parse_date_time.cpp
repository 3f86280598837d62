#include "qto/hosts/embedded/formats/parse_date_time.hpp"

#include <array>
#include <charconv>

#include "qto/hosts/embedded/formats/english_names.hpp"
#include "qto/hosts/embedded/formats/serial_date.hpp"
#include "qto/hosts/embedded/formats/text_cursor.hpp"

namespace qto::embedded::formats {
namespace {

using Kind = ParsedNumber::Kind;

constexpr int kLastYearOf2000s = 29;  // two-digit years 30..99 are 19xx
constexpr int kMaxHours = 9999;
constexpr std::size_t kMaxDigits = 4;

int to_int(std::string_view digits) {
  int value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

/// A part of a date: a number with its digits, or the name of a month.
struct Field {
  int value = 0;
  std::size_t digits = 0;  // 0 for a name

  bool is_name() const { return digits == 0; }
  bool is_day_or_month() const { return digits == 1 || digits == 2; }
  bool is_long_year() const { return digits == 4; }
};

std::optional<int> year_of(const Field& field) {
  if (field.is_long_year()) return field.value;
  if (!field.is_day_or_month()) return std::nullopt;
  return field.value + (field.value <= kLastYearOf2000s ? 2000 : 1900);
}

class DateReader {
 public:
  DateReader(TextCursor& cursor, bool date1904, int current_year)
      : cursor_(cursor), date1904_(date1904), current_year_(current_year) {}

  /// The serial of the date at the cursor, which ends up behind it.
  std::optional<int> read() {
    if (!read_fields()) return std::nullopt;
    const bool named = fields_[0].is_name() || (count_ > 1 && fields_[1].is_name());
    if (count_ == 2) return named ? named_pair() : numeric_pair();
    if (count_ != 3) return std::nullopt;
    return named ? named_triple() : numeric_triple();
  }

 private:
  bool read_field() {
    Field field;
    if (const std::string_view digits = cursor_.digits(); !digits.empty()) {
      if (digits.size() > kMaxDigits) return false;
      field = {to_int(digits), digits.size()};
    } else {
      field = {month_from_name(cursor_.letters()), 0};
      if (field.value == 0) return false;
    }
    fields_[count_++] = field;
    return true;
  }

  // '/' or '-' without spaces, a comma with or without spaces behind it, or just spaces (written
  // ' '); NUL when no separator follows.
  char read_separator() {
    if (cursor_.accept('/')) return '/';
    if (cursor_.accept('-')) return '-';
    const bool comma = cursor_.accept(',');
    const bool spaces = cursor_.skip_spaces();
    if (comma) return ',';
    return spaces ? ' ' : '\0';
  }

  // A following "12:30" or "12 PM" belongs to the time.
  bool time_follows() const {
    TextCursor ahead = cursor_;
    if (ahead.digits().empty()) return false;
    if (ahead.peek() == ':') return true;
    ahead.skip_spaces();
    const char c = ahead.peek();
    return c == 'a' || c == 'A' || c == 'p' || c == 'P';
  }

  bool read_fields() {
    if (!read_field()) return false;
    while (count_ < fields_.size()) {
      const TextCursor before = cursor_;
      const char separator = read_separator();
      if (separator == '\0') break;
      if (separator == ' ' && count_ >= 2 && time_follows()) {
        cursor_ = before;
        break;
      }
      separators_[count_ - 1] = separator;
      if (!read_field()) return false;
    }
    return separators_fit();
  }

  bool separators_fit() const {
    for (std::size_t i = 0; i + 1 < count_; ++i) {
      const char separator = separators_[i];
      const bool beside_name = fields_[i].is_name() || fields_[i + 1].is_name();
      const bool before_year = i == 1 && fields_[0].is_name();
      if (separator == ' ' && !beside_name && !before_year) return false;
      if (separator == ',' && !before_year && !(beside_name && i == count_ - 2)) return false;
    }
    const bool numeric = !fields_[0].is_name() && !fields_[1].is_name();
    return !numeric || count_ < 3 || separators_[0] == separators_[1];
  }

  std::optional<int> serial(int year, int month, int day) const {
    return serial_from_civil({year, month, day}, date1904_);
  }

  // Month and day of the current year, or else month and year.
  std::optional<int> month_with(int month, const Field& other) const {
    if (other.is_day_or_month() && other.value > 0) {
      if (const auto day = serial(current_year_, month, other.value)) return day;
    }
    const auto year = year_of(other);
    return year ? serial(*year, month, 1) : std::nullopt;
  }

  std::optional<int> named_pair() const {
    const bool name_first = fields_[0].is_name();
    const Field& name = fields_[name_first ? 0 : 1];
    const Field& other = fields_[name_first ? 1 : 0];
    if (other.is_name() || (!name_first && other.is_long_year())) return std::nullopt;
    return month_with(name.value, other);
  }

  std::optional<int> numeric_pair() const {
    return fields_[0].is_day_or_month() ? month_with(fields_[0].value, fields_[1]) : std::nullopt;
  }

  std::optional<int> named_triple() const {
    const bool name_first = fields_[0].is_name();
    const Field& name = fields_[name_first ? 0 : 1];
    const Field& day = fields_[name_first ? 1 : 0];
    const auto year = fields_[2].is_name() ? std::nullopt : year_of(fields_[2]);
    if (!day.is_day_or_month() || !year) return std::nullopt;
    return serial(*year, name.value, day.value);
  }

  std::optional<int> numeric_triple() const {
    if (fields_[2].is_name()) return std::nullopt;
    const bool year_first = fields_[0].is_long_year();
    const Field& month = fields_[year_first ? 1 : 0];
    const Field& day = fields_[year_first ? 2 : 1];
    const auto year = year_of(fields_[year_first ? 0 : 2]);
    if (!month.is_day_or_month() || !day.is_day_or_month() || !year) return std::nullopt;
    return serial(*year, month.value, day.value);
  }

  TextCursor& cursor_;
  bool date1904_;
  int current_year_;
  std::array<Field, 3> fields_;
  std::array<char, 2> separators_{};
  std::size_t count_ = 0;
};

class TimeReader {
 public:
  explicit TimeReader(TextCursor& cursor) : cursor_(cursor) {}

  /// The time at the cursor in days. `max_hours` bounds the hours.
  std::optional<double> read(int max_hours) {
    if (!read_fields() || !read_half_of_day()) return std::nullopt;
    // "12:30.5" has minutes and seconds.
    if (count_ == 2 && has_fraction_) fields_ = {0, fields_[0], fields_[1]};
    if (half_ != '\0') {
      if (fields_[0] > 12) return std::nullopt;
      fields_[0] = fields_[0] % 12 + (half_ == 'p' ? 12 : 0);
    } else if (count_ == 1) {
      return std::nullopt;
    }
    if (fields_[0] > max_hours || fields_[1] > 59 || fields_[2] > 59) return std::nullopt;
    return (fields_[0] * 3600.0 + fields_[1] * 60.0 + fields_[2] + fraction_) / 86400;
  }

 private:
  bool read_fields() {
    do {
      const std::string_view digits = cursor_.digits();
      if (digits.empty() || digits.size() > kMaxDigits) return false;
      fields_[count_++] = to_int(digits);
    } while (count_ < fields_.size() && cursor_.accept(':'));
    return count_ < 2 || !cursor_.accept('.') || read_fraction();
  }

  bool read_fraction() {
    has_fraction_ = true;
    double unit = 0.1;
    for (const char c : cursor_.digits()) {
      fraction_ += (c - '0') * unit;
      unit /= 10;
    }
    return true;
  }

  bool read_half_of_day() {
    TextCursor ahead = cursor_;
    if (!ahead.skip_spaces()) return true;
    const std::string_view word = ahead.letters();
    if (word.empty() || word.size() > 2) return false;
    const bool morning = starts_with_ignoring_case(word, "a");
    const bool whole = word.size() == 1 || starts_with_ignoring_case(word.substr(1), "m");
    if (!whole || (!morning && !starts_with_ignoring_case(word, "p"))) return false;
    half_ = morning ? 'a' : 'p';
    cursor_ = ahead;
    return true;
  }

  TextCursor& cursor_;
  std::array<int, 3> fields_{};
  std::size_t count_ = 0;
  double fraction_ = 0;
  bool has_fraction_ = false;
  char half_ = '\0';
};

}  // namespace

std::optional<ParsedNumber> parse_date_time(std::string_view text, bool date1904,
                                            int current_year) {
  TextCursor cursor(text);
  if (const auto time = TimeReader(cursor).read(kMaxHours); time && cursor.at_end()) {
    return ParsedNumber{*time, Kind::time};
  }
  cursor = TextCursor(text);
  const auto date = DateReader(cursor, date1904, current_year).read();
  if (!date) return std::nullopt;
  if (cursor.at_end()) return ParsedNumber{static_cast<double>(*date), Kind::date};
  if (!cursor.skip_spaces()) return std::nullopt;
  const auto time = TimeReader(cursor).read(23);
  if (!time || !cursor.at_end()) return std::nullopt;
  return ParsedNumber{*date + *time, Kind::date_time};
}

}  // namespace qto::embedded::formats
