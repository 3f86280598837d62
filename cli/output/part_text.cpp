#include "cli/output/part_text.hpp"

#include <algorithm>

#include "qto/automation/address.hpp"
#include "qto/automation/text.hpp"
#include "qto/links/linked_books.hpp"
#include "qto/links/main.hpp"

namespace qto::cli {

Ref<ModelPart> displayed(ModelPart& part) {
  Ref<ModelPart> shown(&part);
  if (part.is_range() && part.sheet_record() && !part.IsUnknown() && !part.ResultsSet()) {
    shown = make_ref<ModelPart>();
    shown->create_cell(part.sheet_record(), part.cell());
  }
  shown->SetResultsValues();
  return shown;
}

namespace {

constexpr std::size_t formula_letters = 60;
constexpr std::size_t title_letters = 40;
constexpr std::size_t value_letters = 40;

bool continues(char c) noexcept { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

std::string cut(std::string text, std::size_t limit, bool full) {
  if (full || text.size() <= limit || letters(text) <= limit) return text;
  std::size_t bytes = 0;
  for (std::size_t left = limit; bytes < text.size(); ++bytes)
    if (!continues(text[bytes]) && left-- == 1) break;
  return text.substr(0, bytes) + "…";
}

std::string formula_of(ModelPart& shown) {
  if (shown.FormulaHidden()) return "(formula hidden)";
  const std::string formula = shown.Formula();
  if (shown.ObjectType() == "Pivot Table") return "pivot table of " + formula;
  if (!formula.starts_with('=')) return "";
  // As its author sees it: table references and the like are not yet spelled out.
  const std::string local = shown.FormulaLocal();
  return local.starts_with('=') ? local : formula;
}

std::string value_of(ModelPart& shown) {
  if (shown.ObjectType() == "!LINK") return "(link to another application)";
  if (shown.IsUnknown()) {
    const bool closed = Main::BooksNotOpened()->find(shown.WorkBookFullName()) != nullptr;
    return closed || shown.Exists() ? "(not opened)" : "(does not exist)";
  }
  std::string value = shown.Text();
  if (value.empty() && shown.value().is_empty()) return std::string(no_content);
  if (shown.value().is_text() && text::to_number(value)) return '"' + value + '"';
  return value;
}

}  // namespace

std::string grouped(std::int64_t number) {
  std::string digits = std::to_string(number);
  const std::ptrdiff_t first = number < 0 ? 1 : 0;
  for (std::ptrdiff_t at = std::ssize(digits) - 3; at > first; at -= 3)
    digits.insert(static_cast<std::size_t>(at), 1, ',');
  return digits;
}

std::string counted(std::size_t count, std::string_view what) {
  std::string text = grouped(static_cast<std::int64_t>(count));
  text.append(" ").append(what);
  return count == 1 ? text : text + "s";
}

std::size_t letters(std::string_view text) noexcept {
  return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), continues));
}

void pad(std::string& text, std::size_t width) {
  const std::size_t used = letters(text);
  if (used < width) text.append(width - used, ' ');
}

std::string one_line(std::string_view text) {
  std::string line(text);
  std::replace_if(
      line.begin(), line.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
  return line;
}

std::string readable_address(const ModelPart& part, std::string_view home_book) {
  return readable_address(part, home_book, part.AddressShort());
}

std::string readable_address(const ModelPart& part, std::string_view home_book,
                             std::string_view address) {
  const std::string sheet = part.WorkSheetName();
  const std::string book = part.WorkBookName();
  const bool foreign = !book.empty() && !text::equal_fold(book, home_book);
  // A sheet's own name carries its sheet already.
  if (!foreign && (sheet.empty() || part.ObjectType() == "Name")) return one_line(address);
  std::string out;
  if (foreign)
    out = "'[" + book + "]" + sheet + "'";
  else
    append_sheet_name(out, sheet);
  if (const std::string chart = part.EmbeddedChartName(); !chart.empty()) out += "(" + chart + ")";
  return one_line(out.append("!").append(address));
}

PartText describe(ModelPart& part, std::string_view home_book, bool full) {
  const auto shown = displayed(part);
  PartText out;
  out.address = readable_address(part, home_book);
  out.title = cut(one_line(shown->Title()), title_letters, full);
  out.formula = cut(one_line(formula_of(*shown)), formula_letters, full);
  out.value = cut(one_line(value_of(*shown)), value_letters, full);
  return out;
}

}  // namespace qto::cli
