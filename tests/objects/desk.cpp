#include "tests/objects/desk.hpp"

#include "qto/hosts/embedded/formats/number_format.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"
#include "qto/hosts/embedded/objects/worksheet_object.hpp"

namespace qto::embedded {
namespace {

std::string shown_array(const VariantArray& array) {
  std::string out = "{";
  for (int row = 1; row <= array.rows(); ++row)
    for (int column = 1; column <= array.columns(); ++column) {
      if (column > 1) out += ',';
      if (column == 1 && row > 1) out += ';';
      out += shown(array.at(row, column));
    }
  return out + "}";
}

}  // namespace

std::string shown(const Variant& value) {
  if (value.is_empty()) return "";
  if (value.is_null()) return "Null";
  if (const auto* number = value.get_if<double>()) return formats::general_text(*number);
  if (const auto* whole = value.get_if<std::int32_t>()) return std::to_string(*whole);
  if (const auto* date = value.get_if<Date>()) return "d" + formats::general_text(date->serial);
  if (const auto* flag = value.get_if<bool>()) return *flag ? "TRUE" : "FALSE";
  if (const auto* error = value.get_if<ErrorValue>()) return std::string(error_text(*error));
  if (value.is_text()) return '"' + value.text() + '"';
  if (value.is_array()) return shown_array(value.array());
  const auto range = ref_cast<host::Range>(value.object());
  return range ? range->Worksheet()->Name() + "!" + range->Address(false, false) : "object";
}

Book& book_of(const Ref<host::Workbook>& workbook) {
  return ref_cast<WorkbookObject>(workbook)->open().book();
}

Sheet& sheet_of(const Ref<host::Worksheet>& worksheet) {
  return ref_cast<WorksheetObject>(worksheet)->sheet();
}

}  // namespace qto::embedded
