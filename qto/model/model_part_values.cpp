#include <algorithm>

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

/// The text that a drill reads a million formulas into, or one of its own: a host that is asked for
/// a formula may call back.
class FormulaText {
 public:
  explicit FormulaText(SheetRecord* sheet) : sheet_(sheet) {
    if (sheet_) kept_ = std::move(sheet_->scratch);
    if (!kept_) kept_ = std::make_unique<std::string>();
    kept_->clear();
  }
  FormulaText(const FormulaText&) = delete;
  FormulaText& operator=(const FormulaText&) = delete;
  ~FormulaText() {
    if (sheet_) sheet_->scratch = std::move(kept_);
  }
  std::string& text() noexcept { return *kept_; }

 private:
  const Ref<SheetRecord> sheet_;
  std::unique_ptr<std::string> kept_;
};

}  // namespace

std::string ModelPart::Formula() { return std::string(read_formula_again()); }

std::string_view ModelPart::read_formula_again() {
  Procedure proc("ModelPart", "Formula[Get]");
  check_still_exists();
  const bool read_before = has(formula_read);
  // The field of a relative name changes while the name is read.
  const std::string relative(has(relative_name) ? formula_.view() : std::string_view());
  const bool was_relative = has(relative_name);
  FormulaText fresh(sheet_.get());
  if (!read_formula_into(fresh.text())) fresh.text().clear();
  const std::string_view held = was_relative ? relative : formula_.view();
  if (!read_before || fresh.text() == held) {
    formula_.assign(fresh.text());
    return formula_.view();
  }
  const std::string before(held);
  const std::string after = fresh.text();
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
    const bool read = host::tried([&] {
      if (sheet_ && type_ == Type::range)
        sheet_->sheet->append_cell_formula(pos_, out);
      else
        out = formula_of_object();
    });
    if (!read) set(formula_hidden, true);
    return read;
  });
}

std::string ModelPart::formula_of_object() {
  switch (type_) {
    case Type::range:
      return range()->Formula();
    case Type::pivot_table:
      return Main::inpivottable(range());
    case Type::name:
      if (!has(relative_name)) return object<host::DefinedName>().RefersTo();
      check_relative_name();
      return std::string(formula_.view());
    case Type::series:
      return series_values_formula(object<host::Series>());
    default:
      throw AutomationError(ErrorNumber::wrong_object);
  }
}

Variant ModelPart::get_value() {
  return procedure("ModelPart", "get_value", [this]() QTO_INLINED -> Variant {
    if (!has_object()) return "";
    Variant result;
    bool holds_error = false;
    switch (type_) {
      case Type::range:
      case Type::pivot_table:
        result = sheet_ ? sheet_->sheet->cell_value(pos_) : range()->value();
        break;
      case Type::name:
        result = name_value(holds_error);
        break;
      case Type::series:
        result = Null{};
        break;
      default:
        throw AutomationError(ErrorNumber::wrong_object);
    }
    set(error, holds_error || result.is_error());
    return result;
  });
}

namespace {

/// The sheet that a name is seen from: its own, or that of the cell that uses it.
Ref<host::Worksheet> evaluation_sheet(const host::DefinedName& name, const Ref<host::Range>& user) {
  const auto parent = name.Parent();
  const auto book = ref_cast<host::Workbook>(parent);
  if (!book) return ref_cast<host::Worksheet>(parent);
  if (user && user->exists() && user->Worksheet()->Workbook() == book) return user->Worksheet();
  return book->Worksheets(1);
}

/// True when one of the cells shows an error. Beyond the used cells there is none.
bool shows_an_error(const host::Worksheet& sheet, const Rect& used, Rect block) {
  block.last.row = std::min(block.last.row, used.last.row);
  block.last.column = std::min(block.last.column, used.last.column);
  if (block.last.row < block.first.row || block.last.column < block.first.column) return false;
  const Variant found = sheet.Block(block)->value();
  if (!found.is_array()) return found.is_error();
  const VariantArray& values = found.array();
  for (std::int32_t row = 1; row <= values.rows(); ++row)
    for (std::int32_t column = 1; column <= values.columns(); ++column)
      if (values.at(row, column).is_error()) return true;
  return false;
}

bool shows_an_error(const host::Range& cells) {
  const auto sheet = cells.Worksheet();
  const Rect used = sheet->UsedRange()->block();
  if (cells.AreasCount() == 1) return shows_an_error(*sheet, used, cells.block());
  const std::string areas = cells.Address(false, false);
  for (std::size_t from = 0; from < areas.size();) {
    const std::size_t end = std::min(areas.find(',', from), areas.size());
    Rect block;
    if (sheet->find_block(std::string_view(areas).substr(from, end - from), block) &&
        shows_an_error(*sheet, used, block))
      return true;
    from = end + 1;
  }
  return false;
}

}  // namespace

/// The value of the cell or formula that the name refers to; Null for several cells or values,
/// whose errors it shows nevertheless.
Variant ModelPart::name_value(bool& holds_error) {
  const auto& name = object<host::DefinedName>();
  const std::string refers_to = has(relative_name) ? std::string(formula_.view()) : name.RefersTo();
  const auto sheet = evaluation_sheet(name, rare().parent_range);
  if (!sheet) throw NumberedFailure(91, "a name of neither a workbook nor a sheet");
  Variant result = sheet->Evaluate(refers_to);
  if (const auto range = ref_cast<host::Range>(result.object())) {
    if (range->AreasCount() == 1 && range->CellsCount() == 1) return range->value();
    holds_error = shows_an_error(*range);
  }
  if (result.is_array() || result.is_object()) result = Null{};
  return result;
}

std::string ModelPart::Text() {
  Procedure proc("ModelPart", "Text[Get]");
  if (!has(text_read)) {
    // Most parts of a large drill are never shown; formatting waits until one is.
    std::string shown;
    if (proc.step([&] { shown = object_answers() ? get_text() : format_value(value_); }))
      rare().text = std::move(shown);
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
    const std::string relative(has(relative_name) ? formula_.view() : std::string_view());
    const bool was_relative = has(relative_name);
    FormulaText fresh(sheet_.get());
    if (!read_formula_into(fresh.text())) fresh.text().clear();
    changed = fresh.text() != (was_relative ? relative : formula_.view());
    if (changed || was_relative) formula_.assign(fresh.text());
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
