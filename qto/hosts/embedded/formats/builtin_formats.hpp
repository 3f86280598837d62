#pragma once

#include <string_view>

namespace qto::embedded::formats {

/// The format code behind a number format id that a workbook may use without declaring it
/// (ECMA-376 Part 1, 18.8.30), as it shows under en-US settings. Empty for ids without one.
std::string_view builtin_format(int num_fmt_id);

}  // namespace qto::embedded::formats
