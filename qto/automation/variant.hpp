#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "qto/automation/object.hpp"
#include "qto/automation/ref.hpp"

namespace qto {

struct Empty {
  bool operator==(const Empty&) const = default;
};
struct Null {
  bool operator==(const Null&) const = default;
};
/// A moment in days since 1899-12-30, whatever date system its workbook counts in.
struct Date {
  double serial = 0;
  bool operator==(const Date&) const = default;
};

/// The error values of a cell, by the numbers that automation gives them.
enum class ErrorValue : std::int32_t {
  null = 2000,
  div0 = 2007,
  value = 2015,
  ref = 2023,
  name = 2029,
  num = 2036,
  na = 2042,
  getting_data = 2043,
  spill = 2045,
  calc = 2050,
};

/// "#DIV/0!" and so on.
std::string_view error_text(ErrorValue error) noexcept;

/// A text that never changes and is shared by whoever shows it.
class SharedText : public RefCounted {
 public:
  explicit SharedText(std::string text) : text_(std::move(text)) {}
  const std::string& str() const noexcept { return text_; }

 private:
  const std::string text_;
};

class VariantArray;

/// An automation value in 16 bytes. Integers and Booleans keep their own types.
class Variant {
 public:
  Variant() noexcept = default;  ///< Empty
  Variant(Empty) noexcept {}
  Variant(Null v) noexcept : value_(v) {}
  Variant(bool v) noexcept : value_(v) {}
  Variant(std::int32_t v) noexcept : value_(v) {}
  Variant(double v) noexcept : value_(v) {}
  Variant(Date v) noexcept : value_(v) {}
  Variant(ErrorValue v) noexcept : value_(v) {}
  Variant(Ref<const SharedText> v) noexcept : value_(std::move(v)) {}
  Variant(std::string v) : value_(Ref<const SharedText>(new SharedText(std::move(v)))) {}
  Variant(std::string_view v) : Variant(std::string(v)) {}
  Variant(const char* v) : Variant(std::string(v)) {}
  Variant(Ref<const VariantArray> v) noexcept;
  Variant(Ref<Object> v) noexcept : value_(std::move(v)) {}
  template <class T>
  requires std::is_base_of_v<Object, T> Variant(const Ref<T>& v)
  noexcept : value_(Ref<Object>(v)) {}
  // A pointer must not slip in as a Boolean.
  template <class T>
  requires std::is_pointer_v<T> Variant(T)
  = delete;

  bool is_empty() const noexcept { return value_.index() == 0; }
  bool is_null() const noexcept { return holds<Null>(); }
  bool is_error() const noexcept { return holds<ErrorValue>(); }
  bool is_date() const noexcept { return holds<Date>(); }
  bool is_bool() const noexcept { return holds<bool>(); }
  bool is_text() const noexcept { return holds<Ref<const SharedText>>(); }
  bool is_array() const noexcept { return holds<Ref<const VariantArray>>(); }
  bool is_object() const noexcept { return holds<Ref<Object>>(); }
  /// A number of any kind; Booleans and dates are not counted.
  bool is_number() const noexcept { return holds<double>() || holds<std::int32_t>(); }

  template <class T>
  const T* get_if() const noexcept {
    return std::get_if<T>(&value_);
  }
  /// The text of a text value, "" for anything else.
  const std::string& text() const noexcept;
  /// The elements of an array value; only when is_array().
  const VariantArray& array() const noexcept;
  /// The object of an object value, or nothing.
  Ref<Object> object() const noexcept;

  /// The automation type name: "Empty", "Null", "Boolean", "Long", "Double", "Date", "String",
  /// "Error", "Variant()", or the class name of an object.
  std::string_view type_name() const noexcept;

  /// Same type and same value; two Nulls are equal, arrays compare element by element.
  bool operator==(const Variant& other) const noexcept;

 private:
  template <class T>
  bool holds() const noexcept {
    return std::holds_alternative<T>(value_);
  }
  std::variant<Empty, Null, bool, std::int32_t, double, Date, ErrorValue, Ref<const SharedText>,
               Ref<const VariantArray>, Ref<Object>>
      value_;
};

/// The values of a block of cells, row by row. Rows and columns count from 1.
class VariantArray : public RefCounted {
 public:
  VariantArray(int rows, int columns)
      : rows_(rows), columns_(columns), items_(static_cast<std::size_t>(rows) * columns) {}
  int rows() const noexcept { return rows_; }
  int columns() const noexcept { return columns_; }
  const Variant& at(int row, int column) const noexcept { return items_[index(row, column)]; }
  Variant& at(int row, int column) noexcept { return items_[index(row, column)]; }
  const std::vector<Variant>& items() const noexcept { return items_; }

 private:
  std::size_t index(int row, int column) const noexcept {
    return static_cast<std::size_t>(row - 1) * columns_ + (column - 1);
  }
  int rows_;
  int columns_;
  std::vector<Variant> items_;
};

}  // namespace qto
