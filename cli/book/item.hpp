#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "qto/automation/object.hpp"
#include "qto/host/range.hpp"
#include "qto/host/workbook.hpp"

namespace qto::cli {

/// A text names nothing in the book, or nothing that can be asked about. what() says it to people.
class ItemError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What START or ITEM denotes.
struct Item {
  Ref<Object> object;
  /// As ModelPart::Create takes it: "Range", "Name", "Series".
  std::string_view type;
  /// For a name, a cell on the sheet from whose view it is read.
  Ref<host::Range> seen_from;
};

/// The item that a text names: an address, a defined name or a series, with or without its sheet.
/// Throws ItemError.
Item find_item(const Ref<host::Workbook>& book, std::string_view text);

/// The item to look at: as find_item, but for a name the cells that it refers to. Throws ItemError.
Item find_shown(const Ref<host::Workbook>& book, std::string_view text);

/// A cell that a pivot table fills.
bool is_pivot_cell(const Item& item);

/// What a drill starts from, and how it is written.
struct Start {
  Ref<Object> object;
  std::string text;
};

/// What to start from: as find_item, but a name must refer to fixed cells, which it then stands
/// for. Of several cells each that holds a formula is a start. Throws ItemError.
std::vector<Start> find_starts(const Ref<host::Workbook>& book, const std::string& text);

}  // namespace qto::cli
