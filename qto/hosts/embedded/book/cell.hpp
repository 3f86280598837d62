#pragma once

#include <cstdint>

#include "qto/automation/variant.hpp"

namespace qto::embedded {

/// A text of a book's pool; 0 is the empty text.
using TextId = std::uint32_t;
/// A formula of a book; 0 means that a cell holds none.
using FormulaId = std::uint32_t;
/// A cell format of a book's style table; 0 is the default.
using StyleId = std::uint32_t;

enum class CellType : std::uint8_t { empty, number, text, boolean, error };

/// What a cell holds: a value and its style, in 16 bytes.
class Cell {
 public:
  CellType type() const noexcept { return type_; }
  bool is_empty() const noexcept { return type_ == CellType::empty; }
  double number() const noexcept { return number_; }
  TextId text() const noexcept { return text_; }
  bool boolean() const noexcept { return boolean_; }
  ErrorValue error() const noexcept { return error_; }
  StyleId style() const noexcept { return style_; }

  void set_style(StyleId style) noexcept { style_ = style; }
  void clear_value() noexcept {
    type_ = CellType::empty;
    number_ = 0;
  }
  void set_number(double value) noexcept {
    type_ = CellType::number;
    number_ = value;
  }
  void set_text(TextId id) noexcept {
    type_ = CellType::text;
    text_ = id;
  }
  void set_boolean(bool value) noexcept {
    type_ = CellType::boolean;
    boolean_ = value;
  }
  void set_error(ErrorValue value) noexcept {
    type_ = CellType::error;
    error_ = value;
  }

 private:
  union {
    double number_ = 0;
    TextId text_;
    bool boolean_;
    ErrorValue error_;
  };
  StyleId style_ = 0;
  CellType type_ = CellType::empty;
};
static_assert(sizeof(Cell) == 16);

}  // namespace qto::embedded
