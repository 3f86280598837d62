#include "qto/automation/text.hpp"

#include <algorithm>
#include <cmath>

#include "qto/hosts/embedded/evaluate/build_array.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// A place of a delimiter in a text, in UTF-16 units.
struct Cut {
  std::size_t from;
  std::size_t to;
};

std::u16string folded(const std::u16string& text) {
  std::u16string result = text::to_utf16(text::fold_case(text::from_utf16(text)));
  // Positions must stay what they are; where folding moves them, letter case counts.
  return result.size() == text.size() ? result : text;
}

/// The delimiters of an argument, longest first so that none hides behind its own beginning.
Outcome<std::vector<std::u16string>> delimiters_of(Call& call, int i, bool fold) {
  std::vector<std::u16string> delimiters;
  const Grid grid(call.context(), call[i]);
  for (std::int64_t k = 0; k < grid.size(); ++k) {
    const auto text = to_text(grid.nth(k));
    if (!text) return text.error();
    std::u16string units = text::to_utf16(*text);
    delimiters.push_back(fold ? folded(units) : std::move(units));
  }
  std::ranges::stable_sort(delimiters, std::ranges::greater{}, &std::u16string::size);
  return delimiters;
}

/// All places of the delimiters, none overlapping another. An empty delimiter has none.
std::vector<Cut> cuts_of(std::u16string_view text, const std::vector<std::u16string>& delimiters) {
  std::vector<Cut> cuts;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t length = 0;
    for (const auto& delimiter : delimiters)
      if (!delimiter.empty() && text.substr(at).starts_with(delimiter)) {
        length = delimiter.size();
        break;
      }
    if (length > 0) cuts.push_back({at, at + length});
    at += std::max<std::size_t>(length, 1);
  }
  return cuts;
}

/// TEXTBEFORE and TEXTAFTER: text, delimiter, instance, mode, match_end, if_not_found.
template <bool before>
Operand fn_text_beside(Call& call) {
  const std::u16string text = text::to_utf16(call.text(0));
  const double instance = call.given(2) ? std::trunc(call.number(2)) : 1;
  const double mode = call.number(3, 0);
  const double match_end = call.number(4, 0);
  if (instance == 0 || (mode != 0 && mode != 1) || (match_end != 0 && match_end != 1))
    return ErrorValue::value;
  if (std::fabs(instance) > std::max(1.0, static_cast<double>(text.size())))
    return ErrorValue::value;
  const auto delimiters = delimiters_of(call, 1, mode == 1);
  if (!delimiters) return delimiters.error();
  if (!text.empty() && !delimiters->empty() && delimiters->back().size() > text.size())
    return ErrorValue::value;
  std::vector<Cut> cuts = cuts_of(mode == 1 ? folded(text) : text, *delimiters);
  const bool empty_delimiter =
      std::ranges::any_of(*delimiters, [](const auto& d) { return d.empty(); });
  if (empty_delimiter && cuts.empty())
    cuts = {instance > 0 ? Cut{0, 0} : Cut{text.size(), text.size()}};
  if (match_end == 1) {
    if (instance > 0)
      cuts.push_back({text.size(), text.size()});
    else
      cuts.insert(cuts.begin(), Cut{0, 0});
  }
  const auto count = static_cast<std::size_t>(std::fabs(instance));
  if (count > cuts.size()) return call.given(5) ? call[5] : Operand(ErrorValue::na);
  const Cut& cut = instance > 0 ? cuts[count - 1] : cuts[cuts.size() - count];
  return text::from_utf16(before ? text.substr(0, cut.from) : text.substr(cut.to));
}

std::vector<std::u16string> pieces_of(const std::u16string& text,
                                      const std::vector<std::u16string>& delimiters, bool fold,
                                      bool ignore_empty) {
  std::vector<std::u16string> pieces;
  std::size_t from = 0;
  const auto add = [&](std::size_t to) {
    if (to > from || !ignore_empty) pieces.push_back(text.substr(from, to - from));
  };
  for (const Cut& cut : cuts_of(fold ? folded(text) : text, delimiters)) {
    add(cut.from);
    from = cut.to;
  }
  add(text.size());
  return pieces;
}

Operand fn_textsplit(Call& call) {
  const bool ignore_empty = call.logical(3, false);
  const double mode = call.number(4, 0);
  if (mode != 0 && mode != 1) return ErrorValue::value;
  const bool fold = mode == 1;
  std::vector<std::u16string> across, down;
  for (const int i : {1, 2}) {
    if (!call.given(i)) continue;
    const auto delimiters = delimiters_of(call, i, fold);
    if (!delimiters) return delimiters.error();
    for (const auto& delimiter : *delimiters)
      if (delimiter.empty()) return ErrorValue::value;
    (i == 1 ? across : down) = *delimiters;
  }
  if (across.empty() && down.empty()) return ErrorValue::value;
  std::vector<std::vector<std::u16string>> lines;
  std::size_t width = 0;
  for (const auto& line : pieces_of(text::to_utf16(call.text(0)), down, fold, ignore_empty)) {
    lines.push_back(pieces_of(line, across, fold, ignore_empty));
    width = std::max(width, lines.back().size());
  }
  if (lines.empty() || width == 0) return ErrorValue::calc;
  const Variant pad = call.given(5) ? call.value(5).to_variant() : Variant(ErrorValue::na);
  return build_array(call.context(), static_cast<int>(lines.size()), static_cast<int>(width),
                     [&](int row, int column) {
                       const auto& line = lines[static_cast<std::size_t>(row)];
                       const auto i = static_cast<std::size_t>(column);
                       return i < line.size() ? Variant(text::from_utf16(line[i])) : pad;
                     });
}

/// A value as text; strict: as it would be written in a formula.
std::string written(const ValueView& value, bool strict) {
  if (value.is_error()) return std::string(error_text(value.error()));
  if (!value.is_text() || !strict) return *to_text(value);
  std::string text = "\"";
  for (const char c : value.text()) {
    if (c == '"') text += '"';
    text += c;
  }
  return text + '"';
}

Operand fn_valuetotext(Call& call) {
  const double format = std::trunc(call.number(1, 0));
  if (format != 0 && format != 1) return ErrorValue::value;
  return written(call.value(0), format == 1);
}

Operand fn_arraytotext(Call& call) {
  const double format = std::trunc(call.number(1, 0));
  if (format != 0 && format != 1) return ErrorValue::value;
  if (call[0].areas().size() > 1) return ErrorValue::value;
  const bool strict = format == 1;
  const Grid grid(call.context(), call[0]);
  if (grid.size() > max_array_elements) return ErrorValue::num;
  std::string text = strict ? "{" : "";
  for (int row = 0; row < grid.rows(); ++row)
    for (int column = 0; column < grid.columns(); ++column) {
      if (row > 0 || column > 0) text += strict ? (column > 0 ? "," : ";") : ", ";
      text += written(grid.at(row, column), strict);
    }
  return strict ? text + '}' : text;
}

// clang-format off
constexpr FunctionSpec text_part_table[] = {
    {"ARRAYTOTEXT", 1, 2, plain, {values, number}, fn_arraytotext, "array, [format]",
     "an array as text", "=ARRAYTOTEXT({1,\"a\";TRUE,2},1)", "{1,\"a\";TRUE,2}"},
    {"TEXTAFTER", 2, 6, plain, {text, values, number, number, number, any}, fn_text_beside<false>,
     "text, delimiter, [instance], [mode], [match_end], [if_not_found]",
     "what stands after a delimiter", "=TEXTAFTER(\"a-b-c\",\"-\",-1)", "c"},
    {"TEXTBEFORE", 2, 6, plain, {text, values, number, number, number, any}, fn_text_beside<true>,
     "text, delimiter, [instance], [mode], [match_end], [if_not_found]",
     "what stands before a delimiter", "=TEXTBEFORE(\"a-b-c\",\"-\",2)", "a-b"},
    {"TEXTSPLIT", 2, 6, plain, {text, values, values, logical, number, any}, fn_textsplit,
     "text, column_delimiter, [row_delimiter], [ignore_empty], [mode], [pad]",
     "the pieces of a text between delimiters", "=COLUMNS(TEXTSPLIT(\"a,b;c\",{\",\",\";\"}))",
     "3"},
    {"VALUETOTEXT", 1, 2, plain, {any, number}, fn_valuetotext, "value, [format]",
     "a value as text", "=VALUETOTEXT(\"a\",1)", "\"a\""},
};
// clang-format on
static_assert(well_formed(text_part_table));

}  // namespace

std::span<const FunctionSpec> text_part_functions() { return text_part_table; }

}  // namespace qto::embedded::functions
