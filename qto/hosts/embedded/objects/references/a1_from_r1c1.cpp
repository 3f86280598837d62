#include <charconv>

#include "qto/hosts/embedded/objects/references/convert_reference.hpp"

namespace qto::embedded {
namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool is_word(char c) {
  return is_digit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '.' ||
         c == '$' || static_cast<unsigned char>(c) >= 0x80;
}

/// One corner of an R1C1 reference; 0 stands for a part that was not written.
struct Corner {
  CellPos pos{0, 0};
  bool row_absolute = false;
  bool column_absolute = false;
  bool off_grid = false;
};

/// Reads a text that is partly R1C1 references from left to right.
class Converter {
 public:
  Converter(std::string_view text, CellPos at) : text_(text), at_(at) {}

  std::optional<std::string> run() {
    while (pos_ < text_.size()) {
      const char c = text_[pos_];
      if (c == '"' || c == '\'')
        copy_quoted(c);
      else if (c == '[')
        copy_brackets();
      else if (!is_word(c))
        out_.push_back(text_[pos_++]);
      else if (!convert())
        copy_word();
      if (off_grid_) return std::nullopt;
    }
    return std::move(out_);
  }

 private:
  char peek(std::size_t pos) const { return pos < text_.size() ? text_[pos] : '\0'; }

  void copy_to(std::size_t end) {
    out_.append(text_.substr(pos_, end - pos_));
    pos_ = std::min(end, text_.size());
  }
  void copy_quoted(char quote) {
    const std::size_t end = text_.find(quote, pos_ + 1);
    copy_to(end == std::string_view::npos ? text_.size() : end + 1);
  }
  void copy_brackets() {
    const std::size_t end = text_.find(']', pos_);
    copy_to(end == std::string_view::npos ? text_.size() : end + 1);
  }
  void copy_word() {
    std::size_t end = pos_;
    while (is_word(peek(end))) ++end;
    copy_to(end);
  }

  /// Reads the number or bracketed distance after R or C; without one the distance is 0.
  bool take_axis(std::size_t& pos, std::int32_t base, std::int32_t size, std::int32_t& value,
                 bool& absolute, bool& off_grid) const {
    std::int64_t number = 0;
    const char* end = text_.data() + text_.size();
    if (is_digit(peek(pos))) {
      const auto [stop, error] = std::from_chars(text_.data() + pos, end, number);
      if (error != std::errc{}) return false;
      pos = static_cast<std::size_t>(stop - text_.data());
      absolute = true;
    } else if (peek(pos) == '[') {
      const auto [stop, error] = std::from_chars(text_.data() + pos + 1, end, number);
      if (error != std::errc{} || stop == end || *stop != ']') return false;
      pos = static_cast<std::size_t>(stop - text_.data()) + 1;
      if (number > size || number < -size) number = size + 1;
      number += base;
    } else {
      number = base;
    }
    off_grid = off_grid || number < 1 || number > size;
    value = off_grid ? 1 : static_cast<std::int32_t>(number);
    return true;
  }

  /// Reads a corner at `pos`; gives its end, or `pos` when none is there.
  std::size_t take_corner(std::size_t pos, Corner& corner) const {
    const std::size_t start = pos;
    corner = {};
    if ((peek(pos) | 0x20) == 'r') {
      ++pos;
      if (!take_axis(pos, at_.row, max_rows, corner.pos.row, corner.row_absolute, corner.off_grid))
        return start;
    }
    if ((peek(pos) | 0x20) == 'c') {
      ++pos;
      if (!take_axis(pos, at_.column, max_columns, corner.pos.column, corner.column_absolute,
                     corner.off_grid))
        return start;
    }
    const char next = peek(pos);
    const bool goes_on = is_word(next) || next == '(' || next == '!' || next == '[';
    return goes_on ? start : pos;
  }

  bool convert() {
    Corner first;
    std::size_t end = take_corner(pos_, first);
    if (end == pos_) return false;
    Corner last = first;
    bool block = first.pos.row == 0 || first.pos.column == 0;
    if (peek(end) == ':') {
      Corner other;
      const std::size_t other_end = take_corner(end + 1, other);
      const bool same_shape = (other.pos.row == 0) == (first.pos.row == 0) &&
                              (other.pos.column == 0) == (first.pos.column == 0);
      if (other_end != end + 1 && same_shape) {
        last = other;
        end = other_end;
        block = true;
      }
    }
    off_grid_ = first.off_grid || last.off_grid;
    append(first);
    if (block) {
      out_.push_back(':');
      append(last);
    }
    pos_ = end;
    return true;
  }

  void append(const Corner& corner) {
    if (corner.pos.column != 0) {
      if (corner.column_absolute) out_.push_back('$');
      append_column(out_, corner.pos.column);
    }
    if (corner.pos.row != 0) {
      if (corner.row_absolute) out_.push_back('$');
      out_.append(std::to_string(corner.pos.row));
    }
  }

  std::string_view text_;
  CellPos at_;
  std::size_t pos_ = 0;
  std::string out_;
  bool off_grid_ = false;
};

}  // namespace

std::optional<std::string> a1_from_r1c1(std::string_view formula, CellPos at) {
  return Converter(formula, at).run();
}

}  // namespace qto::embedded
