#include "qto/hosts/libreoffice/formulas/from_office.hpp"

#include <algorithm>

#include "qto/automation/address.hpp"
#include "qto/automation/text.hpp"
#include "qto/formula/lexer.hpp"
#include "qto/formula/structured_reference.hpp"
#include "qto/formula/token_values.hpp"

namespace qto::libreoffice {
namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_word_start(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '\\' ||
         static_cast<unsigned char>(c) >= 0x80;
}
bool is_word(char c) { return is_word_start(c) || is_digit(c) || c == '.' || c == '?'; }

/// What stands before a reference: an address of a book, a sheet.
struct Prefix {
  std::string url;
  std::string sheet;
  bool present = false;
  bool broken = false;
};

struct Corner {
  Prefix prefix;
  std::string_view text;  ///< with its dollars
};

class OfficeReader {
 public:
  OfficeReader(std::string_view text, const Surroundings& book) : text_(text), book_(book) {}

  std::string read() {
    while (pos_ < text_.size()) step();
    return std::move(out_);
  }
  bool relative() const { return relative_; }

 private:
  char at(std::size_t pos) const { return pos < text_.size() ? text_[pos] : '\0'; }
  char here() const { return at(pos_); }

  void step() {
    const char c = here();
    if (c == '"') return copy(quoted_end(pos_));
    if (c == '\'' || c == '$' || is_word_start(c) || is_digit(c)) return read_operand();
    if (c == '#') return read_hash();
    if (c == '[') return read_numbered_link();
    if (c == '.' && is_digit(at(pos_ + 1))) return copy(number_end(pos_));
    ++pos_;
    switch (c) {
      case ';':
      case '~':
        out_.push_back(',');
        break;
      case '|':
        out_.push_back(';');
        break;
      case '!':
        out_.push_back(' ');
        break;
      default:
        out_.push_back(c);
    }
  }

  void copy(std::size_t end) {
    out_.append(text_.substr(pos_, end - pos_));
    pos_ = end;
  }

  /// Behind a text in quotes or apostrophes that begins at `pos`.
  std::size_t quoted_end(std::size_t pos) const {
    const char quote = text_[pos];
    for (++pos; pos < text_.size(); ++pos) {
      if (text_[pos] != quote) continue;
      if (at(pos + 1) != quote) return pos + 1;
      ++pos;
    }
    return pos;
  }

  std::size_t number_end(std::size_t pos) const {
    while (is_digit(at(pos)) || at(pos) == '.') ++pos;
    if (at(pos) != 'E' && at(pos) != 'e') return pos;
    const std::size_t sign = at(pos + 1) == '+' || at(pos + 1) == '-' ? 1 : 0;
    if (!is_digit(at(pos + 1 + sign))) return pos;
    for (pos += 1 + sign; is_digit(at(pos));) ++pos;
    return pos;
  }

  std::size_t word_end(std::size_t pos) const {
    while (is_word(at(pos))) ++pos;
    return pos;
  }

  void read_hash() {
    const std::string upper = text::upper_ascii(text_.substr(pos_));
    const std::size_t length = formula::error_constant_length(upper);
    if (length == 0) {
      out_.push_back(text_[pos_++]);
      return;
    }
    const std::string_view error = std::string_view(upper).substr(0, length);
    pos_ += length;
    out_.append(error);
    // A reference on a sheet that is gone: #REF!.A1
    if (error == "#REF!" && here() == '.') {
      ++pos_;
      if (const std::size_t end = corner_end(pos_)) copy(end);
    }
  }

  /// [1]!Rate, [4]plan!b2: what the suite could not find in a linked book.
  void read_numbered_link() {
    std::size_t pos = pos_ + 1;
    int number = 0;
    while (is_digit(at(pos)) && number < 100000) number = number * 10 + (at(pos++) - '0');
    const auto link = at(pos) == ']' ? book_.link(number) : std::nullopt;
    if (!link) return copy(word_end(std::min(text_.find('!', pos_), text_.size() - 1) + 1));
    ++pos;
    std::string sheet;
    if (at(pos) == '\'') {
      const std::size_t end = quoted_end(pos);
      sheet = formula::unquote(text_.substr(pos, end - pos));
      pos = end;
    } else {
      const std::size_t end = std::min(text_.find('!', pos), text_.size());
      sheet = text_.substr(pos, end - pos);
      pos = end;
    }
    append_link(out_, *link, sheet);
    pos_ = std::min(pos + 1, text_.size());
    copy(at(pos_) == '\'' ? quoted_end(pos_) : word_end(pos_));
  }

  void read_operand() {
    if (read_area()) return;
    if (is_digit(here())) return copy(number_end(pos_));
    if (here() == '\'') return copy_unresolved(quoted_end(pos_));
    if (here() == '$') return copy(pos_ + 1);
    const std::size_t end = word_end(pos_);
    const std::string_view word = text_.substr(pos_, end - pos_);
    if (at(end) == '(') return read_function(word, end);
    if (at(end) == '[' && read_structured(word, end)) return;
    // A name may stand before the operator; a sheet does where what follows is not to be found
    // there.
    book_.is_sheet(word) ? copy_unresolved(end) : copy(end);
  }

  /// Copies a qualifier that the suite could make nothing of, with what follows it.
  void copy_unresolved(std::size_t end) {
    copy(end);
    if (here() != '!') return;
    copy(pos_ + 1);
    if (here() != '#') copy(word_end(pos_));
  }

  void read_function(std::string_view word, std::size_t end) {
    pos_ = end;
    if ((word == "TRUE" || word == "FALSE") && at(end + 1) == ')') {
      out_.append(word);
      pos_ = end + 2;
      return;
    }
    out_.append(book_.functions().shown(word));
  }

  bool read_structured(std::string_view table, std::size_t begin) {
    std::size_t end = begin;
    int depth = 0;
    do {
      if (end >= text_.size()) return false;
      if (text_[end] == '\'') {
        ++end;
      } else if (text_[end] == '[') {
        ++depth;
      } else if (text_[end] == ']') {
        --depth;
      }
      ++end;
    } while (depth > 0);
    std::string token(table);
    depth = 0;
    for (std::size_t i = begin; i < end; ++i) {
      if (text_[i] == '[') ++depth;
      if (text_[i] == ']') --depth;
      token.push_back(text_[i] == ';' && depth == 1 ? ',' : text_[i]);
    }
    const auto reference = formula::parse_structured(token);
    if (!reference) return false;
    out_.append(book_.structured(*reference));
    pos_ = end;
    return true;
  }

  /// Behind a cell, column or row with its dollars at `pos`; 0 when there is none.
  std::size_t corner_end(std::size_t pos) const {
    const std::size_t begin = pos;
    if (at(pos) == '$') ++pos;
    std::string_view letters = text_.substr(std::min(pos, text_.size()));
    const std::size_t before = letters.size();
    const std::int32_t column = take_column(letters);
    pos += before - letters.size();
    const std::size_t row_begin = pos;
    if (column != 0 && at(pos) == '$') ++pos;
    std::size_t digits = pos;
    while (is_digit(at(digits))) ++digits;
    const bool row = digits > pos && digits - pos <= 7;
    if (row)
      pos = digits;
    else if (column != 0)
      pos = row_begin;
    else
      return 0;
    return pos > begin && !is_word(at(pos)) && at(pos) != '(' ? pos : 0;
  }

  /// The prefix of a reference at `pos`, which moves behind it.
  Prefix read_prefix(std::size_t& pos) const {
    Prefix prefix;
    std::size_t next = pos;
    if (at(next) == '\'') {
      const std::size_t end = quoted_end(next);
      if (at(end) == '#') {
        prefix.url = formula::unquote(text_.substr(next, end - next));
        next = end + 1;
      }
    }
    const bool absolute = at(next) == '$';
    if (absolute) ++next;
    std::size_t end = next;
    if (at(next) == '\'') {
      end = quoted_end(next);
      prefix.sheet = formula::unquote(text_.substr(next, end - next));
    } else if (text_.substr(std::min(next, text_.size())).starts_with("#REF!")) {
      end = next + 5;
      prefix.broken = true;
    } else {
      while (is_word(at(end)) && at(end) != '.') ++end;
      prefix.sheet = text_.substr(next, end - next);
    }
    const bool named = prefix.broken || !prefix.url.empty() ||
                       (!prefix.sheet.empty() && (absolute || book_.is_sheet(prefix.sheet)));
    if (!named || at(end) != '.') return {};
    prefix.present = true;
    pos = end + 1;
    return prefix;
  }

  bool read_area() {
    std::size_t pos = pos_;
    Corner first;
    first.prefix = read_prefix(pos);
    if (first.prefix.present && at(pos) == '#') return read_broken(first.prefix, pos);
    std::size_t end = corner_end(pos);
    if (end == 0) return false;
    first.text = text_.substr(pos, end - pos);
    Corner last;
    if (at(end) == ':') {
      pos = end + 1;
      last.prefix = read_prefix(pos);
      if (const std::size_t last_end = corner_end(pos)) {
        last.text = text_.substr(pos, last_end - pos);
        end = last_end;
      }
    }
    const bool cell = parse_cell(first.text).has_value();
    if (!cell && last.text.empty()) return false;
    if (!last.text.empty() && !parse_area(std::string(first.text) + ":" + std::string(last.text)))
      return false;
    append_area(first, last);
    pos_ = end;
    return true;
  }

  /// A reference whose cells are gone: Sheet1.#REF!
  bool read_broken(const Prefix& prefix, std::size_t pos) {
    if (!text_.substr(pos).starts_with("#REF!")) return false;
    append_prefix(prefix, "");
    out_.append("#REF!");
    pos_ = pos + 5;
    return true;
  }

  void append_prefix(const Prefix& first, const std::string& last_sheet) {
    if (!first.present) return;
    if (first.broken) {
      out_.append("#REF!");
      return;
    }
    if (first.url.empty()) return append_sheets(out_, first.sheet, last_sheet);
    std::string sheets = first.sheet;
    if (!last_sheet.empty()) sheets.append(":").append(last_sheet);
    append_link(out_, book_.link(first.url), sheets);
  }

  void append_area(const Corner& first, const Corner& last) {
    const bool span =
        last.prefix.present && !text::equal_fold(last.prefix.sheet, first.prefix.sheet);
    append_prefix(first.prefix, span ? last.prefix.sheet : "");
    out_.append(first.text);
    note_dollars(first.text);
    // Of a span of sheets one cell is written once.
    if (last.text.empty() || (span && first.text == last.text && parse_cell(first.text))) return;
    out_.append(":").append(last.text);
    note_dollars(last.text);
  }

  void note_dollars(std::string_view corner) {
    const auto dollars = std::count(corner.begin(), corner.end(), '$');
    relative_ = relative_ || dollars < (parse_cell(corner) ? 2 : 1);
  }

  std::string_view text_;
  const Surroundings& book_;
  std::string out_;
  std::size_t pos_ = 0;
  bool relative_ = false;
};

}  // namespace

std::string from_office(std::string_view text, const Surroundings& book, bool* relative) {
  OfficeReader reader(text, book);
  std::string out = reader.read();
  if (relative) *relative = reader.relative();
  return out;
}

}  // namespace qto::libreoffice
