#pragma once

#include <string>

namespace qto::embedded::functions {

/// The list of all functions in Markdown, made from their tables: docs/functions.md.
std::string documentation();

}  // namespace qto::embedded::functions
