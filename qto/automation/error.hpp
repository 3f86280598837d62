#pragma once

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

namespace qto {

/// The error numbers that the engine raises to its client.
enum class ErrorNumber : std::int32_t {
  wrong_object = static_cast<std::int32_t>(0x80040001),
  no_formula = static_cast<std::int32_t>(0x80040002),
  circular_reference = static_cast<std::int32_t>(0x80040003),
  out_of_range = static_cast<std::int32_t>(0x80040004),
  unknown_token = static_cast<std::int32_t>(0x80040007),
};

/// A failure that the client must handle. It carries a number and nothing else. `reported_first`
/// marks the ones that pass the error report on their way out.
class AutomationError : public std::exception {
 public:
  explicit AutomationError(std::int32_t error_number, bool report = false) noexcept
      : number(error_number), reported_first(report) {}
  explicit AutomationError(ErrorNumber error_number, bool report = false) noexcept
      : AutomationError(static_cast<std::int32_t>(error_number), report) {}
  /// A sentence for the reader.
  const char* what() const noexcept override;

  std::int32_t number;
  bool reported_first;
};

/// An unexpected failure that knows the number under which it is to be reported and, when a call of
/// the spreadsheet host failed, which one ("Workbook.Worksheets").
class NumberedFailure : public std::runtime_error {
 public:
  NumberedFailure(std::int32_t error_number, const std::string& text, std::string host_call = {})
      : std::runtime_error(text), number(error_number), call(std::move(host_call)) {}
  std::int32_t number;
  std::string call;
};

}  // namespace qto
