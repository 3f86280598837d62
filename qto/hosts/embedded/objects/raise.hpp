#pragma once

#include <string>

namespace qto::embedded {

/// Throws the general failure of the object model with this text.
[[noreturn]] void fail(const std::string& text);
/// Throws "no such member of a collection".
[[noreturn]] void no_member(const std::string& text);
/// Throws the failure of a call on an object whose sheet or workbook is gone.
[[noreturn]] void fail_gone();

}  // namespace qto::embedded
