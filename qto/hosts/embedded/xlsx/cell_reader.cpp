#include "qto/hosts/embedded/xlsx/cell_reader.hpp"

#include <algorithm>

#include "qto/hosts/embedded/xlsx/xml_reader.hpp"
#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {
CellReader::CellReader(LoadContext& context, Sheet& sheet)
    : context_(context),
      sheet_(sheet),
      formulas_(context, sheet),
      inline_(context.limits().text_length) {}

void CellReader::start(std::string_view name, const Attributes& attributes) {
  if (name == "c") return start_cell(attributes.list());
  if (name == "row") return start_row(attributes);
  if (!in_cell_) return;
  if (in_inline_) return inline_.start(name);
  if (name == "v") {
    has_value_ = true;
    if (content_ == Content::inline_text) content_ = Content::text;
    value_.clear();
    sink_ = &value_;
    sink_limit_ = context_.limits().text_length * 8;
  } else if (name == "f") {
    formulas_.start(attributes.list());
    sink_ = &formulas_.text();
    sink_limit_ = context_.limits().formula_length;
  } else if (name == "is") {
    has_value_ = in_inline_ = true;
    content_ = Content::inline_text;
    inline_.clear();
  }
}

void CellReader::end(std::string_view name) {
  if (!in_cell_) return;
  if (sink_ == &formulas_.text() && sink_->size() > context_.limits().formula_length)
    context_.package.fail_beyond(
        &Limits::formula_length, "",
        "the formula of " + sheet_.name + "!" + address_of(at_) + " is too long");
  sink_ = nullptr;
  if (name == "c")
    end_cell();
  else if (name == "is")
    in_inline_ = false;
  else if (in_inline_)
    inline_.end(name);
}

void CellReader::text(std::string_view piece) {
  if (sink_) {
    if (sink_->size() <= sink_limit_) sink_->append(piece);
  } else if (in_inline_) {
    inline_.text(piece);
  }
}

void CellReader::start_row(const Attributes& attributes) {
  column_ = 0;
  in_cell_ = false;
  context_.check_cells(sheet_);
  const auto number = attributes.find("r") ? attributes.whole_or("r", 0) : latest_row_ + 1;
  row_ = number >= 1 && number <= max_rows ? static_cast<std::int32_t>(number) : 0;
  if (row_ == 0) return;
  latest_row_ = row_;
  // A height of 0 is how some applications write a hidden row.
  const auto height = static_cast<float>(attributes.number_or("ht", -1));
  RowLayout layout{row_, std::clamp(height, 0.0F, 409.5F),
                   attributes.flag("hidden") || height == 0};
  if (layout.hidden || layout.height > 0 || sheet_.layout.rows_hidden_by_default)
    rows_.push_back(layout);
}

CellReader::Content CellReader::content_of(std::string_view type) noexcept {
  if (type == "s") return Content::shared;
  if (type == "str") return Content::text;
  if (type == "inlineStr") return Content::inline_text;
  if (type == "b") return Content::boolean;
  if (type == "e") return Content::error;
  if (type == "d") return Content::date;
  return Content::number;
}

StyleId CellReader::style_of(std::string_view number) noexcept {
  const auto style = whole_number(number).value_or(0);
  return style >= 0 && style < most_styles ? static_cast<StyleId>(style) : 0;
}

void CellReader::start_cell(const char* const* attributes) {
  at_ = {row_, column_ + 1};
  style_ = 0;
  content_ = Content::number;
  has_value_ = in_inline_ = false;
  formulas_.clear();
  for (; *attributes; attributes += 2) {
    const char* name = attributes[0];
    if (name[0] == '\0' || name[1] != '\0') continue;
    if (name[0] == 'r') {
      const auto written = parse_cell(attributes[1]);
      at_ = written ? written->pos : CellPos{0, 0};
    } else if (name[0] == 's') {
      style_ = style_of(attributes[1]);
    } else if (name[0] == 't') {
      content_ = content_of(attributes[1]);
    }
  }
  in_cell_ = at_.on_grid();
  if (in_cell_) column_ = at_.column;
}

void CellReader::end_cell() {
  in_cell_ = false;
  if (!has_value_ && style_ == 0 && !formulas_.present() && furthest_ < at_) return;
  Cell& cell = sheet_.cells.touch(at_);
  if (furthest_ < at_)
    furthest_ = at_;
  else
    forget_earlier(cell);
  cell.set_style(style_);
  if (has_value_) store_value(cell);
  if (!formulas_.present()) return;
  // Writers that do not calculate leave an empty value element; as a text it is a result.
  const bool is_text = content_ == Content::text || content_ == Content::inline_text;
  formulas_.store(at_, has_value_ && (is_text || !value_.empty()));
}

void CellReader::forget_earlier(Cell& cell) {
  cell.clear_value();
  const FormulaId id = sheet_.cells.formula(at_);
  // The cells of a block keep its formula, whichever stands first in the file.
  if (id != 0 && context_.book.formula(id).kind == FormulaKind::normal)
    sheet_.cells.set_formula(at_, 0);
}

void CellReader::store_value(Cell& cell) {
  switch (content_) {
    case Content::number:
      return store_number(cell);
    case Content::boolean:
      return cell.set_boolean(xml_boolean(value_));
    case Content::error:
      return cell.set_error(error_from(value_));
    case Content::shared: {
      const auto index = whole_number(value_);
      if (!index) return;
      if (*index < 0 || static_cast<std::uint64_t>(*index) >= context_.strings.size())
        throw XmlFault("cell " + address_of(at_) + " names a shared string that is not there");
      return cell.set_text(context_.strings[static_cast<std::size_t>(*index)]);
    }
    case Content::inline_text:
      return cell.set_text(context_.book.texts.intern(inline_.finish()));
    case Content::date:
      if (const auto serial = serial_of_iso(value_, context_.book.date1904))
        return cell.set_number(*serial);
      return store_text(cell);
    case Content::text:
      return store_text(cell);
  }
}

void CellReader::store_number(Cell& cell) {
  if (const auto number = real_number(value_)) return cell.set_number(*number);
  if (!value_.empty()) store_text(cell);
}

void CellReader::store_text(Cell& cell) {
  decode_escapes(value_);
  cut_to_units(value_, context_.limits().text_length);
  cell.set_text(context_.book.texts.intern(value_));
}

void CellReader::finish() {
  formulas_.finish();
  // Rows may come in any order and twice; the layout takes them cheaply in theirs.
  std::ranges::stable_sort(rows_, {}, &RowLayout::row);
  for (const RowLayout& row : rows_) sheet_.layout.set_row(row);
}

}  // namespace qto::embedded
