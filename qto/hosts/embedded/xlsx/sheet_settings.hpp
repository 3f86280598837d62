#pragma once

#include <bitset>
#include <optional>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/book/sheet.hpp"
#include "qto/hosts/embedded/xlsx/xml_events.hpp"

namespace qto::embedded {

/// True for an element of a filtered column that says what is shown; a column without one only has
/// a button.
bool is_filter_criterion(std::string_view element) noexcept;

/// Reads what stands around the cells of a sheet part: columns, view, protection, merged cells.
class SheetSettings {
 public:
  explicit SheetSettings(Sheet& sheet) : sheet_(sheet) {}
  void start(std::string_view name, const Attributes& attributes);

 private:
  void start_format(const Attributes& attributes);
  void start_column(const Attributes& attributes);
  void start_view(const Attributes& attributes);
  void start_pane(const Attributes& attributes);
  void freeze(const Attributes& attributes, const std::optional<WrittenCell>& corner);
  void start_selection(const Attributes& attributes);
  void start_filter(const Attributes& attributes);
  void take_filter();
  void start_protection(const Attributes& attributes);

  Sheet& sheet_;
  std::bitset<max_columns + 1> columns_seen_;
  Rect filter_;            // of the AutoFilter that is being read, its header included
  bool own_views_ = true;  // views of single users come last
  int views_ = 0;
  std::string active_pane_ = "topLeft";
};

}  // namespace qto::embedded
