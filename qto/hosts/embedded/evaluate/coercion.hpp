#pragma once

#include <string>
#include <variant>

#include "qto/hosts/embedded/evaluate/value_view.hpp"

/// How values turn into the type that an operation wants.
namespace qto::embedded {

/// A T, or the error that stands in its place.
template <class T>
class Outcome {
 public:
  Outcome(T value) : data_(std::move(value)) {}
  Outcome(ErrorValue error) : data_(error) {}
  explicit operator bool() const noexcept { return data_.index() == 0; }
  const T& operator*() const noexcept { return *std::get_if<T>(&data_); }
  const T* operator->() const noexcept { return std::get_if<T>(&data_); }
  /// Only when there is no value.
  ErrorValue error() const noexcept { return *std::get_if<ErrorValue>(&data_); }

 private:
  std::variant<T, ErrorValue> data_;
};

/// What reading a text as a number depends on.
struct DateSettings {
  bool date1904 = false;
  int current_year = 1900;
};

/// Texts are read as a user would type a number or date; otherwise #VALUE!. Empty is 0.
Outcome<double> to_number(const ValueView& value, const DateSettings& dates);
/// Numbers are true when not zero, texts only as "TRUE" and "FALSE". Empty is false.
Outcome<bool> to_logical(const ValueView& value);
/// As "&" joins it. Empty is "".
Outcome<std::string> to_text(const ValueView& value);

}  // namespace qto::embedded
