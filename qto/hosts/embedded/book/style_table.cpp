#include "qto/hosts/embedded/book/style_table.hpp"

namespace qto::embedded {

StyleTable::StyleTable() { add("General"); }

void StyleTable::clear() { styles_.clear(); }

StyleId StyleTable::add(std::string format_code, bool locked, bool formula_hidden) {
  auto format = compiled(format_code);
  styles_.push_back({std::move(format), std::move(format_code), locked, formula_hidden});
  return static_cast<StyleId>(styles_.size() - 1);
}

StyleId StyleTable::with_format(StyleId base, std::string_view format_code) {
  const CellStyle from = at(base);
  for (StyleId id = 0; id < styles_.size(); ++id) {
    const CellStyle& style = styles_[id];
    if (style.format_code == format_code && style.locked == from.locked &&
        style.formula_hidden == from.formula_hidden)
      return id;
  }
  return add(std::string(format_code), from.locked, from.formula_hidden);
}

std::shared_ptr<const formats::NumberFormat> StyleTable::compiled(const std::string& code) {
  auto& format = format_by_code_[code];
  if (!format)
    format = std::make_shared<const formats::NumberFormat>(formats::NumberFormat::parse(code));
  return format;
}

}  // namespace qto::embedded
