#include "qto/automation/error.hpp"
#include "qto/automation/text.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"
#include "qto/links/path_helpers.hpp"
#include "qto/model/display_format.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"

namespace qto {

std::string ModelPart::AddressLong(qtoAddressType qualifier) {
  Procedure proc("ModelPart", "AddressLong[Get]");
  return address_result(qualifier, AddressShort());
}

std::string ModelPart::AddressLongLocal(qtoAddressType qualifier) {
  Procedure proc("ModelPart", "AddressLongLocal[Get]");
  return address_result(qualifier, rare().address_short_local);
}

std::string ModelPart::address_result(qtoAddressType qualifier, const std::string& address) {
  Procedure proc("ModelPart", "address_result");
  if (type_ == Type::link) return address;
  const std::string chart =
      rare().embedded_chart_name.empty() ? "" : "(" + rare().embedded_chart_name + ")";
  const std::string sheet = WorkSheetName();
  switch (qualifier) {
    case qtoaddressSheet:
      return sheet.empty() ? address : "'" + sheet + "'" + chart + "!" + address;
    case qtoaddressBook:
      if (sheet.empty()) return "'[" + WorkBookName() + "]'!" + address;
      return "'[" + WorkBookName() + "]" + sheet + "'" + chart + "!" + address;
    case qtoaddressPath:
      return "'" + Main::AddSeparator(WorkBookPath(), LocalFile()) + "[" + WorkBookName() + "]" +
             sheet + "'" + chart + "!" + address;
    case qtoAddressChart:
      if (!chart.empty()) return chart + "!" + address;
      break;
  }
  throw AutomationError(ErrorNumber::out_of_range);
}

void ModelPart::put_Title(std::string_view title) {
  Procedure proc("ModelPart", "Title[Let]");
  const std::string before = std::exchange(rare().title, std::string(title));
  std::string announced(title);
  TitleChanged(before, announced);
}

void ModelPart::SetResultsValues() {
  Procedure proc("ModelPart", "SetResultsValues");
  if (has(results_set)) return;
  std::int32_t style = host::xlA1;
  if (const auto& app = application())
    if (!proc.step([&] { style = app->ReferenceStyle(); })) return;
  check_still_exists();
  if (has(results_set)) return;  // found again, and set on the way
  if (IsUnknown()) {
    set(results_set, true);
    return;
  }
  if (!proc.step([&] { value_ = get_value(); })) return;
  std::string shown;
  if (!proc.step([&] { shown = get_text(); })) return;
  rare().text = std::move(shown);
  set(text_read, true);
  const auto object = UnderlyingObject();
  bool done = false;
  if (const auto cells = ref_cast<host::Range>(object))
    done = set_range_results(*cells, style);
  else if (const auto name = ref_cast<host::DefinedName>(object))
    done = set_name_results(*name, style);
  else if (const auto series = ref_cast<host::Series>(object))
    done = set_series_results(*series, style);
  else
    throw AutomationError(ErrorNumber::wrong_object);
  if (!done) return;
  set(results_set, true);
  AfterSetResults();
}

bool ModelPart::set_range_results(const host::Range& cells, std::int32_t style) {
  Procedure proc("ModelPart", "SetResultsValues");
  if (!proc.step(
          [&] { rare().address_short_local = cells.AddressLocal(false, false, style, false); }))
    return false;
  rare().formula_local.clear();
  if (!has(formula_hidden) && cells.CellsCount() == 1 && !proc.step([&] {
        rare().formula_local =
            style == host::xlA1 ? cells.FormulaLocal() : cells.FormulaR1C1Local();
      }))
    return false;
  const std::string before = rare().title;
  rare().title = get_title();
  if (rare().title != before) TitleChanged(before, rare().title);
  return true;
}

bool ModelPart::set_name_results(const host::DefinedName& name, std::int32_t style) {
  Procedure proc("ModelPart", "SetResultsValues");
  if (!proc.step([&] { rare().address_short_local = name.NameLocal(); })) return false;
  if (!has(relative_name) && !has(formula_hidden) && !proc.step([&] {
        rare().formula_local =
            style == host::xlA1 ? name.RefersToLocal() : name.RefersToR1C1Local();
      }))
    return false;
  rare().title.clear();
  return true;
}

bool ModelPart::set_series_results(const host::Series& series, std::int32_t style) {
  Procedure proc("ModelPart", "SetResultsValues");
  rare().address_short_local = AddressShort();
  rare().formula_local.clear();
  if (!has(formula_hidden) && !proc.step([&] {
        rare().formula_local =
            style == host::xlA1 ? series.FormulaLocal() : series.FormulaR1C1Local();
      }))
    return false;
  rare().title.clear();
  return true;
}

namespace {

/// The heading of a row or column: the first cell's text, or that of the cell reached from it.
std::string heading(const Ref<host::Range>& first, host::Direction direction) {
  std::string shown = first->Text();
  if (shown.empty()) shown = first->End(direction)->Text();
  return shown;
}

}  // namespace

std::string ModelPart::get_title() {
  Procedure proc("ModelPart", "get_title");
  std::string title;
  (void)proc.step([&] {
    const auto cells = range();
    if (const auto name = cells->find_name()) {
      title = name->Name();
      return;
    }
    const auto sheet = cells->Worksheet();
    const CellPos first = cells->block().first;
    std::string row_label;
    std::string column_label;
    if (first.column != 1) row_label = heading(sheet->Cells(first.row, 1), host::xlToRight);
    if (first.row != 1) {
      const auto top = sheet->Cells(1, first.column);
      column_label = heading(top, host::xlDown);
      if (column_label.starts_with("##"))
        column_label = format_hidden_number(top->End(host::xlDown)->value());
    }
    if (text::is_numeric(row_label)) row_label.clear();
    if (row_label.empty()) return;
    title = column_label.empty() ? row_label : row_label + "." + column_label;
  });
  return title;
}

}  // namespace qto
