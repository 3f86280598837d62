#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "qto/hosts/embedded/book/cell.hpp"
#include "qto/hosts/embedded/formats/number_format.hpp"

namespace qto::embedded {

/// What a cell's style says that matters here: its number format and its protection.
struct CellStyle {
  std::shared_ptr<const formats::NumberFormat> format;
  std::string format_code = "General";
  bool locked = true;
  bool formula_hidden = false;
};

/// No application writes more; what a file holds beyond is shown as the default.
inline constexpr std::int64_t most_styles = 65'536;

/// The cell formats of a book by StyleId; entry 0 is the default and always there.
class StyleTable {
 public:
  StyleTable();
  const CellStyle& at(StyleId id) const noexcept { return styles_[id < styles_.size() ? id : 0]; }
  std::size_t size() const noexcept { return styles_.size(); }
  /// Appends a style; the format code is compiled once per distinct code.
  StyleId add(std::string format_code, bool locked = true, bool formula_hidden = false);
  /// The style that is `base` with another number format, found or added.
  StyleId with_format(StyleId base, std::string_view format_code);
  /// Replaces all styles, as a file's style table does. Empty leaves the default alone.
  void clear();

 private:
  std::shared_ptr<const formats::NumberFormat> compiled(const std::string& code);
  std::vector<CellStyle> styles_;
  std::unordered_map<std::string, std::shared_ptr<const formats::NumberFormat>> format_by_code_;
};

}  // namespace qto::embedded
