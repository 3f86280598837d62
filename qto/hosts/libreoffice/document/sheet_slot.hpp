#pragma once

#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/automation/ref.hpp"
#include "qto/host/constants.hpp"
#include "qto/host/sheet.hpp"
#include "qto/hosts/libreoffice/document/cells.hpp"

namespace qto::libreoffice {

class Document;

/// Rows or columns that were shown or hidden here; the others are as the file says.
class LineVisibility {
 public:
  void put(std::int32_t first, std::int32_t last, bool hidden) {
    for (std::int32_t line = first; line <= last; ++line) hidden_[line] = hidden;
  }
  std::optional<bool> hidden(std::int32_t line) const {
    const auto found = hidden_.find(line);
    return found == hidden_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  std::map<std::int32_t, bool> hidden_;
};

/// What every handle of a sheet holds on to. It outlives the sheet, so that a handle can tell that
/// its sheet is gone. What the user sees of the sheet is kept here: the suite shows nothing.
struct SheetSlot : RefCounted {
  Document* document = nullptr;  ///< null once the sheet or its book is gone
  uno::Reference<sheet::XSpreadsheet> sheet;
  std::string name;
  std::int16_t position = 0;  ///< from 0
  bool is_chart = false;
  /// Stands for the sheet under its present names; see host::Worksheet::IdentityStamp.
  std::uint64_t stamp = 0;
  /// The one handle of the sheet, as long as somebody holds it.
  host::Sheet* handle = nullptr;

  std::int32_t visibility = host::xlSheetVisible;
  Rect selection;
  std::vector<Rect> more_selected;
  CellPos scroll;
  LineVisibility rows, columns;

  /// All cells, read when they are first asked for and again after a change.
  Cells& cells();
  void forget_cells() noexcept { cells_.reset(); }

 private:
  std::unique_ptr<Cells> cells_;
};

}  // namespace qto::libreoffice
