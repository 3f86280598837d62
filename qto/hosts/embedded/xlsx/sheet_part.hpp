#pragma once

#include <string>
#include <vector>

#include "qto/hosts/embedded/xlsx/load_context.hpp"

namespace qto::embedded {

/// Relationships that a sheet part names beside its cells.
struct SheetLinks {
  std::vector<std::string> tables;
  std::string drawing;
};

/// Reads the part of a sheet of any kind into the sheet.
SheetLinks read_sheet(LoadContext& context, const Package::Part& part, Sheet& sheet);

}  // namespace qto::embedded
