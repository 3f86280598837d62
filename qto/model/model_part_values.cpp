#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"
#include "qto/model/display_format.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"
#include "qto/model/series_formula.hpp"

namespace qto {
namespace {

/// The sheet that a name is seen from: its own, or that of the cell that uses it.
Ref<host::Worksheet> evaluation_sheet(const host::DefinedName& name, const Ref<host::Range>& user) {
  const auto parent = name.Parent();
  const auto book = ref_cast<host::Workbook>(parent);
  if (!book) return ref_cast<host::Worksheet>(parent);
  if (user && user->exists() && user->Worksheet()->Workbook() == book) return user->Worksheet();
  return book->Worksheets(1);
}

}  // namespace

std::string ModelPart::Formula() { return std::string(read_formula_again()); }

std::string_view ModelPart::read_formula_again() {
  Procedure proc("ModelPart", "Formula[Get]");
  check_still_exists();
  const bool read_before = has(formula_read);
  // Reused: a drill reads a million formulas. A relative name's field changes while it is read.
  thread_local std::string held, fresh;
  held = formula_.view();
  fresh.clear();
  if (!read_formula_into(fresh)) fresh.clear();
  if (!read_before || fresh == held) {
    formula_.assign(fresh);
    return formula_.view();
  }
  const std::string before = held;
  const std::string after = fresh;
  formula_.assign(after);
  set(checked_for_precedents, false);
  clear_precedents();
  set(results_set, false);
  if (!after.empty()) {
    set(unknown, false);
    set(exists, true);
    set(constant, false);
    if (!proc.step([&] { value_ = get_value(); })) return formula_.view();
  }
  FormulaChanged(before, after);
  return formula_.view();
}

std::string ModelPart::read_formula() {
  std::string out;
  if (!read_formula_into(out)) out.clear();
  return out;
}

/// False when the host refused (a hidden formula on a protected sheet).
bool ModelPart::read_formula_into(std::string& out) {
  return procedure("ModelPart", "read_formula", [this, &out]() QTO_INLINED {
    set(formula_read, true);
    if (!has_object()) return true;
    try {
      switch (type_) {
        case Type::range:
          if (sheet_)
            sheet_->sheet->append_cell_formula(pos_, out);
          else
            out = range()->Formula();
          return true;
        case Type::pivot_table:
          out = Main::inpivottable(range());
          return true;
        case Type::name:
          if (has(relative_name)) {
            check_relative_name();
            out = formula_.view();
          } else {
            out = ref_cast<host::DefinedName>(rare().underlying)->RefersTo();
          }
          return true;
        case Type::series:
          out = series_values_formula(*ref_cast<host::Series>(rare().underlying));
          return true;
        default:
          throw AutomationError(ErrorNumber::wrong_object);
      }
    } catch (const AutomationError&) {
      throw;
    } catch (const std::exception&) {
      set(formula_hidden, true);
      return false;
    }
  });
}

Variant ModelPart::get_value() {
  return procedure("ModelPart", "get_value", [this]() QTO_INLINED -> Variant {
    if (!has_object()) return "";
    Variant result;
    switch (type_) {
      case Type::range:
      case Type::pivot_table:
        result = sheet_ ? sheet_->sheet->cell_value(pos_) : range()->value();
        break;
      case Type::name:
        result = name_value();
        break;
      case Type::series:
        result = Null{};
        break;
      default:
        throw AutomationError(ErrorNumber::wrong_object);
    }
    set(error, result.is_error());
    return result;
  });
}

/// The value of the cell or formula that the name refers to; Null for several cells or values.
Variant ModelPart::name_value() {
  const auto name = ref_cast<host::DefinedName>(rare().underlying);
  const std::string refers_to =
      has(relative_name) ? std::string(formula_.view()) : name->RefersTo();
  Variant result = evaluation_sheet(*name, rare().parent_range)->Evaluate(refers_to);
  const auto range = ref_cast<host::Range>(result.object());
  if (range && range->AreasCount() == 1 && range->CellsCount() == 1) return range->value();
  if (result.is_array() || result.is_object()) result = Null{};
  return result;
}

std::string ModelPart::Text() {
  Procedure proc("ModelPart", "Text[Get]");
  if (!has(text_read)) {
    // Most parts of a large drill are never shown; formatting waits until one is.
    std::string shown;
    if (proc.step([&] { shown = get_text(); })) rare().text = std::move(shown);
    set(text_read, true);
  }
  return rare().text;
}

std::string ModelPart::get_text() {
  Procedure proc("ModelPart", "get_text");
  if (!has_object()) return "";
  std::string shown;
  switch (type_) {
    case Type::range:
    case Type::pivot_table:
      shown = range()->Text();
      if (shown.empty() && !value_.is_empty()) shown = format_value(value_);
      break;
    case Type::name:
      if (!value_.is_null()) shown = format_value(value_);
      break;
    case Type::series:
      break;
    default:
      throw AutomationError(ErrorNumber::wrong_object);
  }
  return shown.starts_with("##") ? format_hidden_number(value_) : shown;
}

void ModelPart::CheckForChanges() {
  Procedure proc("ModelPart", "CheckForChanges");
  check_still_exists();
  bool changed = false;
  if (has(formula_read)) {
    thread_local std::string fresh;
    fresh.clear();
    if (!read_formula_into(fresh)) fresh.clear();
    changed = fresh != formula_.view();
    if (changed) formula_.assign(fresh);
  }
  (void)proc.step([&] {
    Variant now = get_value();
    if (now == value_) return;
    ValueChanged(value_, now);
    value_ = std::move(now);
    changed = true;
  });
  // A text that nobody has read yet has nothing to differ from.
  if (has(text_read)) {
    (void)proc.step([&] {
      std::string shown = get_text();
      if (shown == rare().text) return;
      rare().text = std::move(shown);
      changed = true;
    });
  }
  if (!changed) return;
  set(results_set, false);
  set(checked_for_precedents, false);
  clear_precedents();
}

}  // namespace qto
