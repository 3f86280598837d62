#include "qto/hosts/embedded/formats/format_parser.hpp"

#include <array>
#include <charconv>
#include <string>

#include "qto/hosts/embedded/formats/english_names.hpp"

namespace qto::embedded::formats {
namespace {

constexpr std::size_t kMaxCodeLength = 1024;
constexpr std::size_t kMaxSections = 4;
constexpr std::size_t kMaxFixedDenominatorDigits = 7;

bool is_digit(char c) { return c >= '0' && c <= '9'; }

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::size_t code_point_length(std::string_view text, std::size_t pos) {
  std::size_t length = 1;
  while (pos + length < text.size() && (static_cast<unsigned char>(text[pos + length]) >> 6) == 2) {
    ++length;
  }
  return length;
}

bool parse_condition(std::string_view text, Condition& condition) {
  using Op = Condition::Op;
  struct Spelling {
    std::string_view sign;
    Op op;
  };
  static constexpr std::array<Spelling, 6> kSpellings = {{{"<=", Op::less_equal},
                                                          {"<>", Op::not_equal},
                                                          {">=", Op::greater_equal},
                                                          {"<", Op::less},
                                                          {">", Op::greater},
                                                          {"=", Op::equal}}};
  for (const Spelling& spelling : kSpellings) {
    if (!text.starts_with(spelling.sign)) continue;
    text.remove_prefix(spelling.sign.size());
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, condition.limit);
    condition.op = spelling.op;
    return read.ec == std::errc() && read.ptr == end;
  }
  return false;
}

// Colours and the shapes of digits do not change the text.
bool is_ignored_bracket(std::string_view text) {
  static constexpr std::array<std::string_view, 12> kPrefixes = {
      "black", "blue",   "cyan",  "green", "magenta", "red",
      "white", "yellow", "color", "dbnum", "natnum",  "eng"};
  for (const std::string_view prefix : kPrefixes) {
    if (starts_with_ignoring_case(text, prefix)) return true;
  }
  return false;
}

/// Reads one section; digits and punctuation get their final roles in lay_out().
class SectionScanner {
 public:
  SectionScanner(std::string_view code, std::size_t pos) : code_(code), pos_(pos) {}

  std::size_t position() const { return pos_; }
  Section& section() { return section_; }

  /// Stops at the end of the code or at the semicolon. False for a malformed section.
  bool scan() {
    while (pos_ < code_.size() && code_[pos_] != ';') {
      if (!scan_one()) return false;
    }
    return true;
  }

 private:
  bool scan_one() {
    const char c = code_[pos_];
    switch (c) {
      case '"':
        return scan_quoted();
      case '[':
        return scan_bracket();
      case '\\':
      case '_':
      case '*':
        return scan_escape(c);
      case '0':
      case '#':
      case '?':
        add({TokenKind::digit, c, 1, {}}, 1);
        return true;
      case '.':
        add({TokenKind::point, c, 1, {}}, 1);
        return true;
      case ',':
        add({TokenKind::comma, c, 1, {}}, 1);
        return true;
      case '%':
        add({TokenKind::percent, c, 1, {}}, 1);
        return true;
      case '@':
        add({TokenKind::text, c, 1, {}}, 1);
        return true;
      case '/':
        return scan_slash();
      default:
        scan_letter(lower(c));
        return true;
    }
  }

  void add(Token token, std::size_t length) {
    section_.tokens.push_back(std::move(token));
    pos_ += length;
  }

  void add_literal(std::string_view text) {
    if (text.empty()) return;
    if (section_.tokens.empty() || section_.tokens.back().kind != TokenKind::literal) {
      section_.tokens.emplace_back();
    }
    section_.tokens.back().text += text;
  }

  bool scan_quoted() {
    const std::size_t end = code_.find('"', pos_ + 1);
    if (end == std::string_view::npos) return false;
    add_literal(code_.substr(pos_ + 1, end - pos_ - 1));
    pos_ = end + 1;
    return true;
  }

  // \x shows x, _x a space as wide as x, *x fills the cell with x, which is nothing in a text.
  bool scan_escape(char kind) {
    if (pos_ + 1 >= code_.size()) return false;
    const std::size_t length = code_point_length(code_, pos_ + 1);
    if (kind == '\\') add_literal(code_.substr(pos_ + 1, length));
    if (kind == '_') add_literal(" ");
    pos_ += 1 + length;
    return true;
  }

  bool scan_bracket() {
    const std::size_t end = code_.find(']', pos_);
    if (end == std::string_view::npos) return false;
    const std::string_view text = code_.substr(pos_ + 1, end - pos_ - 1);
    pos_ = end + 1;
    if (text.empty()) return false;
    if (text[0] == '$') {
      add_literal(text.substr(1, text.find('-') == std::string_view::npos ? std::string_view::npos
                                                                          : text.find('-') - 1));
      return true;
    }
    if (text[0] == '<' || text[0] == '>' || text[0] == '=') {
      return section_.condition.op == Condition::Op::none &&
             parse_condition(text, section_.condition);
    }
    return scan_elapsed(text) || is_ignored_bracket(text);
  }

  bool scan_elapsed(std::string_view text) {
    const char unit = lower(text[0]);
    if (unit != 'h' && unit != 'm' && unit != 's') return false;
    for (const char c : text) {
      if (lower(c) != unit) return false;
    }
    const TokenKind kind = unit == 'h'   ? TokenKind::elapsed_hours
                           : unit == 'm' ? TokenKind::elapsed_minutes
                                         : TokenKind::elapsed_seconds;
    add({kind, unit, static_cast<int>(text.size()), {}}, 0);
    return true;
  }

  // A number of its own right after "?/" is the denominator to use.
  bool scan_slash() {
    const bool after_digit =
        !section_.tokens.empty() && section_.tokens.back().kind == TokenKind::digit;
    add({TokenKind::slash, '/', 1, {}}, 1);
    if (!after_digit || pos_ >= code_.size() || !is_digit(code_[pos_]) || code_[pos_] == '0') {
      return true;
    }
    std::size_t end = pos_;
    while (end < code_.size() && is_digit(code_[end])) ++end;
    if (end - pos_ > kMaxFixedDenominatorDigits) return false;
    std::string digits(code_.substr(pos_, end - pos_));
    std::from_chars(digits.data(), digits.data() + digits.size(), section_.fixed_denominator);
    const std::size_t length = digits.size();
    add({TokenKind::fixed_denominator, 0, static_cast<int>(length), std::move(digits)}, length);
    return true;
  }

  int run_length() const {
    const char letter = lower(code_[pos_]);
    std::size_t end = pos_;
    while (end < code_.size() && lower(code_[end]) == letter) ++end;
    return static_cast<int>(end - pos_);
  }

  void add_run(TokenKind kind) {
    const int length = run_length();
    add({kind, code_[pos_], length, {}}, static_cast<std::size_t>(length));
  }

  void scan_letter(char letter) {
    switch (letter) {
      case 'y':
        return add_run(TokenKind::year);
      case 'm':
        return add_run(TokenKind::month);
      case 'd':
        return add_run(TokenKind::day);
      case 'h':
        return add_run(TokenKind::hour);
      case 's':
        return add_run(TokenKind::second);
      case 'e':
        return scan_e();
      case 'a':
        return scan_a();
      case 'b':
        return scan_b();
      case 'g':
        return scan_g();
      default:
        add_literal(code_.substr(pos_, 1));
        ++pos_;
    }
  }

  void scan_e() {
    const char next = pos_ + 1 < code_.size() ? code_[pos_ + 1] : '\0';
    if (next == '+' || next == '-') {
      return add({TokenKind::exponent, code_[pos_], next == '+' ? 1 : 0, {}}, 2);
    }
    add({TokenKind::year, 'y', 4, {}}, static_cast<std::size_t>(run_length()));
  }

  void scan_a() {
    const std::string_view rest = code_.substr(pos_);
    if (starts_with_ignoring_case(rest, "am/pm")) return add({TokenKind::am_pm, 0, 2, {}}, 5);
    if (starts_with_ignoring_case(rest, "a/p")) return add({TokenKind::am_pm, rest[0], 1, {}}, 3);
    if (run_length() >= 3) return add_run(TokenKind::weekday);
    add_literal(rest.substr(0, 1));
    ++pos_;
  }

  // B1 and B2 choose a calendar; the dates stay Gregorian.
  void scan_b() {
    const char next = pos_ + 1 < code_.size() ? code_[pos_ + 1] : '\0';
    if (next == '1' || next == '2') {
      pos_ += 2;
      return;
    }
    add_run(TokenKind::buddhist_year);
  }

  void scan_g() {
    if (starts_with_ignoring_case(code_.substr(pos_), "general")) {
      return add({TokenKind::general, 0, 1, {}}, 7);
    }
    add_run(TokenKind::era);
  }

  std::string_view code_;
  std::size_t pos_;
  Section section_;
};

}  // namespace

std::optional<std::vector<Section>> parse_sections(std::string_view code) {
  if (code.size() > kMaxCodeLength) return std::nullopt;
  std::vector<Section> sections;
  std::size_t pos = 0;
  while (true) {
    SectionScanner scanner(code, pos);
    if (sections.size() == kMaxSections || !scanner.scan() || !lay_out(scanner.section())) {
      return std::nullopt;
    }
    sections.push_back(std::move(scanner.section()));
    pos = scanner.position();
    if (pos == code.size()) return sections;
    ++pos;
  }
}

}  // namespace qto::embedded::formats
