#pragma once

#include <string_view>

#include "qto/automation/variant.hpp"
#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// A single value seen where it lies: in a cell, an array or a variant. Looking costs no
/// allocation; a text is good as long as the place it was seen in.
class ValueView {
 public:
  ValueView() noexcept : number_(0) {}
  ValueView(double number) noexcept : number_(number), type_(CellType::number) {}
  ValueView(bool flag) noexcept : boolean_(flag), type_(CellType::boolean) {}
  ValueView(ErrorValue error) noexcept : error_(error), type_(CellType::error) {}
  ValueView(std::string_view text) noexcept : text_(text), type_(CellType::text) {}
  ValueView(const char*) = delete;

  CellType type() const noexcept { return type_; }
  bool is_empty() const noexcept { return type_ == CellType::empty; }
  bool is_number() const noexcept { return type_ == CellType::number; }
  bool is_text() const noexcept { return type_ == CellType::text; }
  bool is_boolean() const noexcept { return type_ == CellType::boolean; }
  bool is_error() const noexcept { return type_ == CellType::error; }
  double number() const noexcept { return number_; }
  bool boolean() const noexcept { return boolean_; }
  ErrorValue error() const noexcept { return error_; }
  std::string_view text() const noexcept { return text_; }

  /// The value on its own feet; texts are copied.
  Variant to_variant() const;

 private:
  union {
    double number_;
    bool boolean_;
    ErrorValue error_;
    std::string_view text_;
  };
  CellType type_ = CellType::empty;
};

/// Dates and whole numbers are numbers here; of an array the first element is seen.
ValueView view_of(const Variant& value) noexcept;
inline ValueView view_of(const Cell& cell, const TextPool& texts) noexcept {
  switch (cell.type()) {
    case CellType::empty:
      break;
    case CellType::number:
      return cell.number();
    case CellType::text:
      return texts.view(cell.text());
    case CellType::boolean:
      return cell.boolean();
    case CellType::error:
      return cell.error();
  }
  return {};
}

}  // namespace qto::embedded
