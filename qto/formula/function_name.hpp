#pragma once

#include <string>
#include <string_view>

namespace qto::formula {

/// A function's or parameter's name without what files put before names that are newer than their
/// format: _xlfn., _xlws., _xlpm., _xlop.
std::string_view without_prefix(std::string_view name) noexcept;

/// The two functions by which files write the marks "@" and "#".
enum class MarkFunction { none, single, anchor_array };
MarkFunction mark_function(std::string_view name) noexcept;

/// A function's name as a formula text shows it. What is written in small letters throughout was
/// typed and is a built-in function; names of a macro keep their mixed case.
std::string shown_function_name(std::string_view name);

}  // namespace qto::formula
