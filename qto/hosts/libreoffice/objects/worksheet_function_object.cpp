#include "qto/hosts/libreoffice/objects/worksheet_function_object.hpp"

#include "qto/hosts/libreoffice/document/scratch.hpp"
#include "qto/hosts/libreoffice/objects/constant_text.hpp"
#include "qto/hosts/libreoffice/objects/range_object.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

/// An argument as formula text: a range of the sheet's document by sheet and address, a value as a
/// literal. False for what has no text.
bool append_argument(std::string& out, const Variant& value, const SheetSlot& seen_from) {
  if (const auto range = ref_cast<host::Range>(value.object())) {
    const SheetSlot& slot = range_of(range).sheet()->slot();
    if (slot.document != seen_from.document) return false;
    append_sheets(out, slot.name, "");
    out.append(range->Address());
  } else if (const auto* number = value.get_if<double>()) {
    out.append(number_text(*number));
  } else if (const auto* whole = value.get_if<std::int32_t>()) {
    out.append(std::to_string(*whole));
  } else if (const auto* date = value.get_if<Date>()) {
    out.append(number_text(date->serial - seen_from.document->date_origin()));
  } else if (const auto* flag = value.get_if<bool>()) {
    out.append(*flag ? "TRUE()" : "FALSE()");
  } else if (value.is_text()) {
    out.push_back('"');
    for (const char c : value.text()) out.append(c == '"' ? 2 : 1, c);
    out.push_back('"');
  } else {
    return false;
  }
  return true;
}

Variant calculate(SheetSlot& slot, const std::string& text) {
  slot.cells();  // read before anything stands in a cell at the end of the grid
  return guarded("Evaluating a function",
                 [&] { return Scratch(*slot.document, slot, scratch_cell)(text); });
}

}  // namespace

std::optional<double> WorksheetFunctionObject::Match(const Variant& lookup_value,
                                                     const Ref<host::Range>& lookup_range,
                                                     std::optional<double> match_type) {
  SheetSlot& slot = range_of(lookup_range).sheet()->slot();
  std::string text = "MATCH(";
  if (!append_argument(text, lookup_value, slot)) return std::nullopt;
  text.push_back(',');
  append_argument(text, lookup_range, slot);
  if (match_type) text.append(",").append(number_text(*match_type));
  const Variant result = calculate(slot, text.append(")"));
  const double* position = result.get_if<double>();
  return position ? std::optional(*position) : std::nullopt;
}

double WorksheetFunctionObject::CountIf(const Ref<host::Range>& range, const Variant& criteria) {
  SheetSlot& slot = range_of(range).sheet()->slot();
  std::string text = "COUNTIF(";
  append_argument(text, range, slot);
  text.push_back(',');
  // An empty criterion counts what equals zero, as an empty cell given to the function does.
  if (!append_argument(text, criteria, slot)) text.push_back('0');
  const Variant result = calculate(slot, text.append(")"));
  const double* count = result.get_if<double>();
  if (!count) fail("COUNTIF gives no number for " + text, "WorksheetFunction.CountIf");
  return *count;
}

}  // namespace qto::libreoffice
