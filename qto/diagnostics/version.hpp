#pragma once

#include <string_view>

namespace qto::diagnostics {

/// Major, minor and revision of the module, as its version record shows them.
inline constexpr std::string_view library_version = "11.0.1";
/// The project name under which error reports go out.
inline constexpr std::string_view project_name = "Quarto";

}  // namespace qto::diagnostics
