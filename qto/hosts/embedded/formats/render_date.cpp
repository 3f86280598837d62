#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

#include "qto/hosts/embedded/formats/english_names.hpp"
#include "qto/hosts/embedded/formats/renderers.hpp"
#include "qto/hosts/embedded/formats/serial_date.hpp"

namespace qto::embedded::formats {
namespace {

// Spreadsheets show no finer part of a second; further places are zeros.
constexpr int kFinestDecimals = 3;
constexpr int kBuddhistYears = 543;
// A date without a time does not round up to the next day before the last 0.1 ms.
constexpr int kDateOnlyDecimals = 4;

void append_padded(std::int64_t value, int width, std::string& out) {
  std::array<char, 24> text;
  const char* end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  const auto length = static_cast<int>(end - text.data());
  if (length < width) out.append(static_cast<std::size_t>(width - length), '0');
  out.append(text.data(), static_cast<std::size_t>(length));
}

class DateRenderer {
 public:
  DateRenderer(const Section& section, const SerialParts& parts, int decimals, bool date1904,
               std::string& out)
      : section_(section),
        day_(parts.day),
        date1904_(date1904),
        date_(civil_from_serial(parts.day, date1904).value_or(CivilDate{})),
        decimals_(decimals),
        fraction_(parts.ticks % power_of_ten(decimals)),
        second_of_day_(parts.ticks / power_of_ten(decimals)),
        out_(out) {}

  void run() {
    for (const Token& token : section_.tokens) render(token);
  }

 private:
  std::int64_t elapsed_seconds() const { return std::int64_t{day_} * 86400 + second_of_day_; }

  void render(const Token& token) {
    switch (token.kind) {
      case TokenKind::year:
        return write_year(date_.year, token.count);
      case TokenKind::buddhist_year:
        return write_year(date_.year + kBuddhistYears, token.count);
      case TokenKind::month:
        return write_month(token.count);
      case TokenKind::day:
        return write_day(token.count);
      case TokenKind::weekday:
        return write_weekday(token.count > 3);
      case TokenKind::hour:
        return write_hour(token.count);
      case TokenKind::minute:
        return append_clock(second_of_day_ / 60 % 60, token.count);
      case TokenKind::second:
        return append_clock(second_of_day_ % 60, token.count);
      case TokenKind::second_fraction:
        return write_second_fraction(token.count);
      case TokenKind::am_pm:
        return write_am_pm(token.symbol);
      case TokenKind::elapsed_hours:
        return append_padded(elapsed_seconds() / 3600, token.count, out_);
      case TokenKind::elapsed_minutes:
        return append_padded(elapsed_seconds() / 60, token.count, out_);
      case TokenKind::elapsed_seconds:
        return append_padded(elapsed_seconds(), token.count, out_);
      default:
        out_ += token.text;
    }
  }

  void append_clock(std::int64_t value, int count) {
    append_padded(value, count > 1 ? 2 : 1, out_);
  }

  void write_year(int year, int count) {
    if (count <= 2) {
      append_padded(year % 100, 2, out_);
    } else {
      append_padded(year, 4, out_);
    }
  }

  void write_month(int count) {
    if (count <= 2) return append_clock(date_.month, count);
    const std::string_view name = month_name(date_.month);
    const bool full = count == 4 || count > 5;
    out_ += full ? name : name.substr(0, count == 3 ? 3 : 1);
  }

  void write_day(int count) {
    if (count <= 2) return append_clock(date_.day, count);
    write_weekday(count > 3);
  }

  void write_weekday(bool full) {
    const std::string_view name = weekday_name(weekday(day_, date1904_));
    out_ += full ? name : name.substr(0, 3);
  }

  void write_hour(int count) {
    std::int64_t hour = second_of_day_ / 3600;
    if (section_.twelve_hours) hour = hour % 12 == 0 ? 12 : hour % 12;
    append_clock(hour, count);
  }

  // Cut, not rounded, when another place of the code shows more decimals than this one.
  void write_second_fraction(int count) {
    out_ += '.';
    const int shown = count < decimals_ ? count : decimals_;
    append_padded(fraction_ / power_of_ten(decimals_ - shown), shown, out_);
    out_.append(static_cast<std::size_t>(count - shown), '0');
  }

  void write_am_pm(char symbol) {
    const bool afternoon = second_of_day_ >= 12 * 3600;
    if (symbol == 0) {
      out_ += afternoon ? "PM" : "AM";
    } else if (symbol == 'a') {
      out_ += afternoon ? 'p' : 'a';
    } else {
      out_ += afternoon ? 'P' : 'A';
    }
  }

  const Section& section_;
  int day_;
  bool date1904_;
  CivilDate date_;
  int decimals_;
  std::int64_t fraction_;
  std::int64_t second_of_day_;
  std::string& out_;
};

}  // namespace

bool render_date(const Section& section, double serial, bool date1904, std::string& out) {
  int decimals = kDateOnlyDecimals;
  if (section.has_time) {
    decimals =
        section.second_decimals < kFinestDecimals ? section.second_decimals : kFinestDecimals;
  }
  const auto parts = split_serial(serial, decimals, date1904);
  if (!parts) return false;
  DateRenderer(section, *parts, decimals, date1904, out).run();
  return true;
}

}  // namespace qto::embedded::formats
