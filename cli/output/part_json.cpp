#include "cli/output/part_json.hpp"

#include "cli/output/part_text.hpp"
#include "qto/hosts/embedded/formats/serial_date.hpp"

namespace qto::cli {
namespace {

void write_rows(JsonWriter& json, const VariantArray& array) {
  json.begin_array();
  for (int row = 1; row <= array.rows(); ++row) {
    json.begin_array();
    for (int column = 1; column <= array.columns(); ++column)
      write_value(json, array.at(row, column));
    json.end_array();
  }
  json.end_array();
}

void write_date(JsonWriter& json, Date date) {
  const auto iso = embedded::formats::iso_text(date.serial, false);
  if (!iso) return json.number(date.serial);  // no day of the calendar
  json.begin_object();
  json.member("date", *iso);
  json.end_object();
}

void write_error(JsonWriter& json, ErrorValue error) {
  json.begin_object();
  json.member("error", error_text(error));
  json.end_object();
}

}  // namespace

void write_value(JsonWriter& json, const Variant& value) {
  if (const auto* number = value.get_if<double>()) return json.number(*number);
  if (const auto* number = value.get_if<std::int32_t>()) return json.number(std::int64_t{*number});
  if (value.is_text()) return json.text(value.text());
  if (const auto* truth = value.get_if<bool>()) return json.boolean(*truth);
  if (const auto* date = value.get_if<Date>()) return write_date(json, *date);
  if (const auto* error = value.get_if<ErrorValue>()) return write_error(json, *error);
  if (value.is_array()) return write_rows(json, value.array());
  json.null();
}

void write_part(JsonWriter& json, ModelPart& part) {
  const auto shown = displayed(part);
  json.begin_object();
  json.member("UniqueKey", shown->UniqueKey());
  json.member("ObjectType", part.ObjectType());
  json.member("AddressShort", part.AddressShort());
  json.member("AddressLong", shown->AddressLong(qtoaddressSheet));
  json.member("WorkBookName", part.WorkBookName());
  json.member("WorkBookPath", part.WorkBookPath());
  json.member("WorkSheetName", part.WorkSheetName());
  json.member("EmbeddedChartName", part.EmbeddedChartName());
  json.member("Formula", shown->Formula());
  json.key("Value");
  write_value(json, shown->value());
  json.member("Text", shown->Text());
  json.member("Title", shown->Title());
  json.member("HasError", shown->HasError());
  json.member("HasConstant", part.HasConstant());
  json.member("IsConstant", part.IsConstant());
  json.member("IsUnknown", part.IsUnknown());
  json.member("Exists", part.Exists());
  json.member("FormulaContainsConstant", std::int64_t{part.FormulaContainsConstant()});
  json.member("IntelligentDrillingUsed", part.IntelligentDrillingUsed());
  json.member("DrillRemark", part.DrillRemark());
  json.end_object();
}

}  // namespace qto::cli
