#pragma once

#include <source_location>
#include <string>

namespace qto::embedded {

/// The failures of the object model. They name the member that was called, "Workbook.Worksheets",
/// where they are thrown by a member of a host object.
#ifdef __cpp_lib_source_location
using CalledFrom = std::source_location;
#else  // clang before version 16: nothing is named
struct CalledFrom {
  static constexpr CalledFrom current() { return {}; }
  constexpr const char* function_name() const { return ""; }
};
#endif

/// Throws the general failure of the object model with this text.
[[noreturn]] void fail(const std::string& text, const CalledFrom& at = CalledFrom::current());
/// Throws "no such member of a collection".
[[noreturn]] void no_member(const std::string& text, const CalledFrom& at = CalledFrom::current());
/// Throws the failure of a call on an object whose sheet or workbook is gone.
[[noreturn]] void fail_gone(const CalledFrom& at = CalledFrom::current());

}  // namespace qto::embedded
