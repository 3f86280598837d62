#include "qto/automation/text.hpp"

#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/numbers.hpp"
#include "qto/hosts/embedded/functions/utf16_slice.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Operand fn_left(Call& call) {
  const double count = call.number(1, 1);
  if (count < 0) return ErrorValue::value;
  return slice(call.text(0), 0, to_count(count));
}

Operand fn_right(Call& call) {
  const double wanted = call.number(1, 1);
  if (wanted < 0) return ErrorValue::value;
  const std::size_t length = text::utf16_length(call.text(0));
  const std::size_t count = std::min(to_count(wanted), length);
  return slice(call.text(0), length - count, count);
}

Operand fn_mid(Call& call) {
  if (call.number(1) < 1 || call.number(2) < 0) return ErrorValue::value;
  return slice(call.text(0), to_count(call.number(1)) - 1, to_count(call.number(2)));
}

Operand fn_len(Call& call) { return static_cast<double>(text::utf16_length(call.text(0))); }
Operand fn_upper(Call& call) { return text::to_upper(call.text(0)); }
Operand fn_lower(Call& call) { return text::to_lower(call.text(0)); }

/// The bytes of the character that starts at `at`.
std::size_t character_bytes(std::string_view text, std::size_t at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  const std::size_t size = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  return std::min(size, text.size() - at);
}

Operand fn_proper(Call& call) {
  const std::string& source = call.text(0);
  std::string result;
  bool inside_word = false;
  for (std::size_t at = 0; at < source.size();) {
    const std::size_t size = character_bytes(source, at);
    const std::string_view character(source.data() + at, size);
    const std::string upper = text::to_upper(character);
    const std::string lower = text::to_lower(character);
    result += inside_word ? lower : upper;
    inside_word = upper != lower;
    at += size;
  }
  return result;
}

Operand fn_trim(Call& call) {
  std::string result;
  for (const char c : call.text(0))
    if (c != ' ' || (!result.empty() && result.back() != ' ')) result += c;
  if (!result.empty() && result.back() == ' ') result.pop_back();
  return result;
}

Operand fn_clean(Call& call) {
  std::string result = call.text(0);
  std::erase_if(result, [](char c) { return static_cast<unsigned char>(c) < 32; });
  return result;
}

Operand fn_concatenate(Call& call) {
  std::string result;
  for (int i = 0; i < call.count(); ++i) result += call.text(i);
  if (too_long(result)) return ErrorValue::value;
  return result;
}

/// Hands the texts of all arguments to `take` in reading order; gives the first error.
template <class Take>
std::optional<ErrorValue> visit_texts(Call& call, int first, Take&& take) {
  std::optional<ErrorValue> error;
  const auto visit = [&](const ValueView& value) {
    const auto text = to_text(value);
    if (!text)
      error = text.error();
    else
      take(*text);
    return !error;
  };
  for (const Operand& argument : call.from(first)) {
    std::vector<Operand> blocks(argument.areas().begin(), argument.areas().end());
    if (blocks.empty()) blocks.push_back(argument);
    for (const Operand& block : blocks) {
      const Grid grid(call.context(), block);
      const int rows = grid.stored_rows();
      for (int row = 0; row < rows; ++row)
        for (int column = 0; column < grid.columns(); ++column)
          if (!visit(grid.at(row, column))) return error;
    }
  }
  return error;
}

Operand fn_concat(Call& call) {
  std::string result;
  const auto error = visit_texts(call, 0, [&](const std::string& text) { result += text; });
  if (error) return *error;
  if (too_long(result)) return ErrorValue::value;
  return result;
}

Operand fn_textjoin(Call& call) {
  std::vector<std::string> delimiters;
  const Grid given(call.context(), call[0]);
  for (std::int64_t i = 0; i < std::min<std::int64_t>(given.size(), max_text_length); ++i) {
    const auto text = to_text(given.nth(i));
    if (!text) return text.error();
    delimiters.push_back(*text);
  }
  std::string result;
  std::size_t taken = 0;
  const auto error = visit_texts(call, 2, [&](const std::string& text) {
    if (call.logical(1) && text.empty()) return;
    if (result.size() > 4 * max_text_length) return;
    if (taken > 0) result += delimiters[(taken - 1) % delimiters.size()];
    result += text;
    ++taken;
  });
  if (error) return *error;
  if (too_long(result)) return ErrorValue::value;
  return result;
}

Operand fn_rept(Call& call) {
  const double times = call.number(1);
  const std::string& unit = call.text(0);
  if (times < 0) return ErrorValue::value;
  const std::size_t count = to_count(times);
  if (unit.empty() || count == 0) return "";
  if (count * text::utf16_length(unit) > max_text_length) return ErrorValue::value;
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += unit;
  return result;
}

Operand fn_exact(Call& call) { return call.text(0) == call.text(1); }

Operand fn_t(Call& call) {
  const Grid grid(call.context(), call[0]);
  const ValueView value = grid.at(0, 0);
  if (value.is_error()) return value.error();
  return value.is_text() ? value.to_variant() : Variant("");
}

// clang-format off
constexpr FunctionSpec text_table[] = {
    {"CLEAN", 1, 1, plain, {text}, fn_clean, "text", "the text without control characters",
     "=CLEAN(\"a\"&CHAR(10)&\"b\")", "ab"},
    {"CONCAT", 1, any_count, takes_spans, {values}, fn_concat, "text1, ...",
     "all texts joined, ranges row by row", "=CONCAT(1,{\"a\",\"b\"})", "1ab"},
    {"CONCATENATE", 1, any_count, plain, {text}, fn_concatenate, "text1, ...", "the texts joined",
     "=CONCATENATE(\"a\",1,TRUE)", "a1TRUE"},
    {"EXACT", 2, 2, plain, {text}, fn_exact, "text1, text2",
     "true when two texts are the same, letter case included", "=EXACT(\"a\",\"A\")", "FALSE"},
    {"LEFT", 1, 2, plain, {text, number}, fn_left, "text, [count]", "the first characters",
     "=LEFT(\"house\",2)", "ho"},
    {"LEFTB", 1, 2, plain, {text, number}, fn_left, "text, [count]", "the first characters",
     "=LEFTB(\"house\",2)", "ho"},
    {"LEN", 1, 1, plain, {text}, fn_len, "text", "the number of characters", "=LEN(\"house\")",
     "5"},
    {"LENB", 1, 1, plain, {text}, fn_len, "text", "the number of characters", "=LENB(\"house\")",
     "5"},
    {"LOWER", 1, 1, plain, {text}, fn_lower, "text", "the text in lower case", "=LOWER(\"ABc\")",
     "abc"},
    {"MID", 3, 3, plain, {text, number, number}, fn_mid, "text, start, count",
     "characters from the middle", "=MID(\"house\",2,3)", "ous"},
    {"MIDB", 3, 3, plain, {text, number, number}, fn_mid, "text, start, count",
     "characters from the middle", "=MIDB(\"house\",2,3)", "ous"},
    {"PROPER", 1, 1, plain, {text}, fn_proper, "text", "the text with words capitalised",
     "=PROPER(\"two WORDS\")", "Two Words"},
    {"REPT", 2, 2, plain, {text, number}, fn_rept, "text, times", "the text repeated",
     "=REPT(\"ab\",3)", "ababab"},
    {"RIGHT", 1, 2, plain, {text, number}, fn_right, "text, [count]", "the last characters",
     "=RIGHT(\"house\",2)", "se"},
    {"RIGHTB", 1, 2, plain, {text, number}, fn_right, "text, [count]", "the last characters",
     "=RIGHTB(\"house\",2)", "se"},
    {"T", 1, 1, plain, {values}, fn_t, "value", "the value if it is a text, otherwise \"\"",
     "=T(\"a\")&T(1)", "a"},
    {"TEXTJOIN", 3, any_count, takes_spans, {values, logical, values}, fn_textjoin,
     "delimiter, ignore_empty, text1, ...", "texts joined with delimiters between them",
     "=TEXTJOIN(\"-\",TRUE,\"a\",\"\",\"b\")", "a-b"},
    {"TRIM", 1, 1, plain, {text}, fn_trim, "text", "the text with single spaces between words",
     "=TRIM(\"  a   b \")", "a b"},
    {"UPPER", 1, 1, plain, {text}, fn_upper, "text", "the text in upper case", "=UPPER(\"abC\")",
     "ABC"},
};
// clang-format on
static_assert(well_formed(text_table));

}  // namespace

std::span<const FunctionSpec> text_functions() { return text_table; }

}  // namespace qto::embedded::functions
