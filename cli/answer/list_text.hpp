#pragma once

#include <cstdio>
#include <string>

#include "cli/terminal/progress.hpp"
#include "qto/model/model_parts.hpp"

namespace qto::cli {

/// Prints parts as a table of address, title, value and formula, one a line.
void print_list(std::FILE* out, const Ref<ModelParts>& parts, const std::string& home_book,
                bool full, Progress& progress);

}  // namespace qto::cli
