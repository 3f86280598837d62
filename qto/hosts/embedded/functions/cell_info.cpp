#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// A format code without its quoted and escaped parts, in lower case, first section only.
std::string bare_code(std::string_view code) {
  std::string bare;
  for (std::size_t i = 0; i < code.size() && code[i] != ';'; ++i) {
    if (code[i] == '"') {
      i = std::min(code.find('"', i + 1), code.size() - 1);
    } else if (code[i] == '\\' || code[i] == '_' || code[i] == '*') {
      ++i;
    } else {
      bare += static_cast<char>(code[i] >= 'A' && code[i] <= 'Z' ? code[i] + 32 : code[i]);
    }
  }
  return bare;
}

std::size_t decimals_of(std::string_view bare) {
  const std::size_t point = bare.find('.');
  if (point == std::string_view::npos) return 0;
  std::size_t count = 0;
  while (point + 1 + count < bare.size() &&
         (bare[point + 1 + count] == '0' || bare[point + 1 + count] == '#'))
    ++count;
  return count;
}

/// The code that CELL gives for a date or time format.
std::string date_code(std::string_view bare) {
  const bool day = bare.find('d') != std::string_view::npos;
  const bool year = bare.find('y') != std::string_view::npos;
  if (bare.find('h') != std::string_view::npos && !day && !year) {
    const bool half_days = bare.find("am/pm") != std::string_view::npos;
    const bool seconds = bare.find('s') != std::string_view::npos;
    return half_days ? (seconds ? "D6" : "D7") : (seconds ? "D8" : "D9");
  }
  const bool named_month = bare.find("mmm") != std::string_view::npos;
  if (!named_month) return year && day ? "D4" : "D5";
  return day && year ? "D1" : day ? "D2" : "D3";
}

std::string format_code_of(const CellStyle& style) {
  const std::string bare = bare_code(style.format_code);
  if (style.format && style.format->is_date()) return date_code(bare);
  if (bare == "general" || bare.find_first_of("0#?") == std::string::npos) return "G";
  const bool money = style.format_code.find('$') != std::string::npos;
  const char kind = bare.find('%') != std::string::npos    ? 'P'
                    : bare.find("e+") != std::string::npos ? 'S'
                    : money                                ? 'C'
                    : bare.find(',') != std::string::npos  ? ','
                                                           : 'F';
  std::string code(1, kind);
  code += std::to_string(decimals_of(bare));
  const std::size_t negative = style.format_code.find(';');
  if (negative != std::string::npos && style.format_code.find('[', negative) != std::string::npos)
    code += '-';
  if (bare.find('(') != std::string::npos) code += "()";
  return code;
}

/// Folder, [book] and sheet, as far as the book was ever saved.
std::string file_name(const Sheet& sheet) {
  const Book& book = sheet.book();
  if (book.path.empty()) return "";
  const char separator = book.path.find('\\') != std::string::npos ? '\\' : '/';
  return book.path + separator + '[' + book.name + ']' + sheet.name;
}

Operand fn_cell(Call& call) {
  Context& context = call.context();
  Area area{context.place().sheet, Rect::cell(context.at())};
  if (call.given(1)) {
    if (call[1].areas().size() != 1) return ErrorValue::value;
    area = call[1].areas().front();
  }
  const CellPos pos = area.rect.first;
  const std::string what = text::upper_ascii(call.text(0));
  if (what == "ROW") return static_cast<double>(pos.row);
  if (what == "COL") return static_cast<double>(pos.column);
  if (what == "ADDRESS") {
    std::string address;
    if (area.sheet != context.place().sheet) {
      append_sheet_name(address, area.sheet->name);
      address += '!';
    }
    append_cell(address, pos, true, true);
    return address;
  }
  if (what == "FILENAME") return file_name(*area.sheet);
  if (what == "WIDTH") return std::round(area.sheet->layout.column_width(pos.column));
  const Cell* cell = area.sheet->cells.find(pos);
  const CellStyle& style = area.sheet->book().styles.at(cell ? cell->style() : 0);
  if (what == "FORMAT") return format_code_of(style);
  if (what == "PROTECT") return style.locked ? 1.0 : 0.0;
  if (what == "COLOR") return format_code_of(style).find('-') != std::string::npos ? 1.0 : 0.0;
  if (what == "PARENTHESES") return format_code_of(style).ends_with("()") ? 1.0 : 0.0;
  const ValueView value = context.single(Area{area.sheet, Rect::cell(pos)});
  if (what == "CONTENTS") return value.is_empty() ? Variant(0.0) : value.to_variant();
  if (what == "TYPE") return value.is_empty() ? "b" : value.is_text() ? "l" : "v";
  if (what == "PREFIX") return value.is_text() ? "'" : "";
  return ErrorValue::value;
}

// clang-format off
constexpr FunctionSpec cell_info_table[] = {
    {"CELL", 1, 2, changes_always, {text, reference}, fn_cell, "what, [reference]",
     "address, contents, format and the like of a cell", "=CELL(\"address\",B7)", "$B$7"},
};
// clang-format on
static_assert(well_formed(cell_info_table));

}  // namespace

std::span<const FunctionSpec> cell_info_functions() { return cell_info_table; }

}  // namespace qto::embedded::functions
