#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/automation/variant.hpp"

namespace qto::embedded {

/// A workbook that formulas of a book refer to, with the values that the file remembers of it.
struct ExternalBook {
  enum class Kind { workbook, dde, ole, self };
  Kind kind = Kind::workbook;
  /// Folder with its trailing separator ("" when the file stores none) and file name.
  std::string folder;
  std::string name;
  /// For DDE and OLE links: application and document.
  std::string application;
  std::string document;
  /// Sheet names in the order of the stored data.
  std::vector<std::string> sheets;
  /// Remembered values per sheet, keyed by (row << 14) + column - 1.
  std::vector<std::unordered_map<std::uint64_t, Variant>> values;
  /// Sheets, by position, that could not be found when the link was last updated: what refers to
  /// them is #REF!.
  std::vector<bool> lost;
  /// Names of the linked book with what they refer to (formula text without "=").
  struct Name {
    std::string name;
    std::string sheet;
    std::string refers_to;
  };
  std::vector<Name> names;

  /// True when values of the sheet are remembered. Letter case does not matter.
  bool remembers(std::string_view sheet) const;

  static std::uint64_t key(CellPos pos) noexcept {
    return (static_cast<std::uint64_t>(pos.row) << 14) + static_cast<std::uint64_t>(pos.column - 1);
  }
};

}  // namespace qto::embedded
