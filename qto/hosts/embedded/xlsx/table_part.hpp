#pragma once

#include "qto/hosts/embedded/book/table.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {

/// Reads a table of `sheet`. Throws OpenFailure when the part does not say where the table is.
Table read_table(Package& package, const Package::Part& part, const Sheet& sheet);

}  // namespace qto::embedded
