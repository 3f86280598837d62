#include "qto/com/conversion.hpp"
#include "qto/server/host_tables/library.hpp"
#include "qto/server/host_tables/names.hpp"

namespace qto::server::host_tables {
namespace {

using host::Application, host::Range, host::WorksheetFunction;

Ref<NameList> names_of(Application& application) {
  return make_ref<NameList>(Ref<Application>(&application));
}
void go_to(Application& application, const Ref<Range>& reference,
           const std::optional<bool>& scroll) {
  if (!reference) throw CallFailure(CallError::type_mismatch, 0);
  application.Goto(reference, scroll.value_or(false));
}
Ref<Range> intersect(Application& application, const Ref<Range>& a, const Ref<Range>& b) {
  if (!a || !b) throw CallFailure(CallError::type_mismatch, a ? 1 : 0);
  return application.Intersect(a, b);
}
/// Without a style to convert to the style stays what it is.
std::string convert_formula(Application& application, const std::string& formula,
                            std::int32_t from_style, const std::optional<std::int32_t>& to_style,
                            const Variant& to_absolute,
                            const std::optional<Ref<Range>>& relative_to) {
  if (!to_absolute.is_empty())
    throw host::HostFailure(
        host::general_failure,
        "ConvertFormula keeps the kind of each reference: leave ToAbsolute out");
  return application.ConvertFormula(formula, from_style, to_style.value_or(from_style),
                                    relative_to.value_or(nullptr));
}

constexpr Member application_members[] = {
    get<&Application::Workbooks>(1, "Workbooks"),
    get<&Application::ActiveWorkbook>(2, "ActiveWorkbook"),
    get<&Application::ActiveSheet>(3, "ActiveSheet"),
    get<&Application::Selection>(4, "Selection"),
    get<&Application::Caption>(5, "Caption"),
    get<&Application::ReferenceStyle>(6, "ReferenceStyle"),
    get<&Application::ScreenUpdating>(7, "ScreenUpdating"),
    put<&Application::put_ScreenUpdating>(7, "ScreenUpdating"),
    get<&Application::EnableEvents>(8, "EnableEvents"),
    put<&Application::put_EnableEvents>(8, "EnableEvents"),
    get<&Application::DisplayAlerts>(9, "DisplayAlerts"),
    put<&Application::put_DisplayAlerts>(9, "DisplayAlerts"),
    method<&intersect>(10, "Intersect", "Arg1, Arg2"),
    get<&application_of>(11, "Application"),
    get<&parent_of>(12, "Parent"),
    get<&Application::ActiveWindow>(13, "ActiveWindow"),
    get<&Application::ActiveChart>(14, "ActiveChart"),
    method<&go_to>(15, "Goto", "Reference, Scroll?"),
    method<&convert_formula>(
        16, "ConvertFormula",
        "Formula, FromReferenceStyle, ToReferenceStyle?, ToAbsolute?, RelativeTo?"),
    get<&Application::WorksheetFunction>(17, "WorksheetFunction"),
    get<&names_of>(18, "Names"),
};
static_assert(identifiers_fit(application_members));

Variant match(WorksheetFunction& functions, const Variant& value, const Ref<Range>& range,
              const Variant& match_type) {
  Variant type = match_type;
  std::optional<double> wanted;
  if (!type.is_empty()) {
    if (convert(type, {Shape::number, ""}) != Conversion::done)
      throw CallFailure(CallError::type_mismatch, 2);
    wanted = *type.get_if<std::int32_t>();
  }
  if (!range) throw CallFailure(CallError::type_mismatch, 1);
  if (const auto place = functions.Match(value, range, wanted)) return Variant(*place);
  throw host::HostFailure(host::general_failure, "MATCH finds no such value");
}
Variant count_if(WorksheetFunction& functions, const Ref<Range>& range, const Variant& criteria) {
  if (!range) throw CallFailure(CallError::type_mismatch, 0);
  return Variant(functions.CountIf(range, criteria));
}

constexpr Member function_members[] = {
    method<&match>(1, "Match", "Arg1, Arg2, Arg3?"),
    method<&count_if>(2, "CountIf", "Arg1, Arg2"),
    get<&application_of>(3, "Application"),
    get<&parent_of>(4, "Parent"),
};
static_assert(identifiers_fit(function_members));

}  // namespace

constinit const ClassTable application_table = host_class<Application>(
    "Application", "The spreadsheet application.", 0x1010, application_members);
constinit const ClassTable worksheet_function_table = host_class<WorksheetFunction>(
    "WorksheetFunction", "Worksheet functions that are called directly.", 0x1120, function_members);

}  // namespace qto::server::host_tables
