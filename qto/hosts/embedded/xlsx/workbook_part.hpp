#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {

/// What the workbook part says, before any sheet is read.
struct WorkbookPart {
  struct SheetEntry {
    std::string name;
    std::string relationship;
    SheetVisibility visibility = SheetVisibility::visible;
  };
  struct NameEntry {
    std::string name;
    std::string refers_to;
    /// Position of the sheet that the name belongs to, from 0; nothing for the workbook's.
    std::optional<std::int64_t> sheet;
    bool hidden = false;
  };
  std::vector<SheetEntry> sheets;
  std::vector<NameEntry> names;
  /// Relationships of the linked books, in the order in which formulas number them.
  std::vector<std::string> externals;
  bool date1904 = false;
  Iteration iteration;
  SheetProtection structure;
  std::int64_t active_sheet = 0;
};

/// Throws OpenFailure when the part is no workbook or is damaged.
WorkbookPart read_workbook_part(Package& package, const Package::Part& part);

/// Makes the sheet names of a file usable: none is empty, no two are the same but for letter case.
class SheetNames {
 public:
  std::string unique(const std::string& name);

 private:
  std::unordered_set<std::string> taken_;
  std::unordered_map<std::string, int> numbered_;  ///< the last number tried, by wanted name
};

}  // namespace qto::embedded
