#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/diagnostics/subject.hpp"
#include "qto/host/host.hpp"
#include "qto/parser/parser.hpp"

namespace qto {

Parser::Parser(Ref<Context> context) : context_(std::move(context)), all_(make_ref<ModelParts>()) {
  Procedure proc("Parser", "Class_Initialize");
}

Parser::~Parser() = default;

void Parser::putref_ParseOptions(Ref<DrillOptions> options) {
  Procedure proc("Parser", "ParseOptions[Set]");
  options_ = std::move(options);
}

void Parser::set_context(const Ref<Context>& context) {
  if (context_ == context) return;
  context_ = context;
  records_.clear();
}

const DrillOptions::Settings& Parser::options() {
  if (!options_) options_ = make_ref<DrillOptions>();
  return options_->settings();
}

void Parser::AddParentRange(ModelPart& part) {
  procedure("Parser", "AddParentRange", [this, &part] { parents_.emplace_back(&part); });
}

void Parser::RemoveParentRange() {
  procedure("Parser", "RemoveParentRange", [this](StandardHandling& proc) {
    (void)proc.step([&] {
      if (parents_.empty()) throw NumberedFailure(9, "no parent part to remove");
      parents_.pop_back();
    });
  });
}

ModelPart& Parser::most_recent_parent() {
  Procedure proc("Parser", "most_recent_parent");
  if (parents_.empty()) throw NumberedFailure(9, "no parent part");
  return *parents_.back();
}

void Parser::enter_part(ModelPart& part) {
  part_ = Ref<ModelPart>(&part);
  const auto& workbook = part.workbook();
  const bool same_place = workbook == own_workbook_ && part.sheet_record() &&
                          part.sheet_record() == last_record_ && own_worksheet_ &&
                          own_worksheet_->IdentityStamp() == last_record_->stamp &&
                          last_record_->stamp != 0;
  if (!same_place) {
    own_workbook_ = workbook;
    own_path_ = part.WorkBookPath();
    own_book_ = part.WorkBookName();
    own_sheet_ = part.WorkSheetName();
    last_record_ = part.sheet_record();
    own_worksheet_ = last_record_ ? last_record_->sheet : find_sheet(own_book_, own_sheet_);
  }
  const auto& app = context_->application();
  const auto first = app ? app->Workbooks()->find(1) : nullptr;
  form_sheet_ = first && first->WorksheetsCount() > 0 ? first->Worksheets(1) : nullptr;
}

namespace {

/// Copies of a formula are recognised where nothing has to be shown of their walk.
host::FormulaPattern pattern_of(const ModelPart& part) {
  const auto& sheet = part.sheet_record();
  if (!sheet || sheet->stamp == 0 || diagnostics::tracing()) return {};
  return sheet->sheet->formula_pattern(part.cell());
}

/// "[Plan.xlsx]Sheet1!B7", for a report. Only the book is asked for its name.
std::string place_of(const void* subject) {
  const auto& part = *static_cast<const ModelPart*>(subject);
  std::string place;
  try {
    if (const auto book = part.Workbook()) place = "[" + book->Name() + "]";
  } catch (const std::exception&) {
    // The host may be what fails.
  }
  const std::string sheet = part.WorkSheetName();
  if (!place.empty() || !sheet.empty()) place += sheet + "!";
  return place + part.AddressShort();
}

}  // namespace

std::uint32_t Parser::options_signature() {
  const DrillOptions::Settings& chosen = options();
  std::uint32_t signature = 1;
  for (const qtoDrillType type :
       {chosen.parse_if, chosen.parse_lookup, chosen.parse_sumif, chosen.parse_index,
        chosen.parse_match, chosen.parse_indirect, chosen.parse_offset})
    signature = signature * 8 + static_cast<std::uint32_t>(type);
  return signature;
}

/// Adds what a copy of the formula led to, moved to this cell; false when none was met.
bool Parser::follow_remembered(const host::FormulaPattern& pattern) {
  if (pattern.id == 0) return false;
  memory_.hold_for(options_signature());
  const auto* entry = memory_.find(last_record_->stamp, pattern.id);
  if (!entry || !*entry) return false;
  const RememberedFormula& formula = **entry;
  const CellPos cell = part_->cell();
  for (std::size_t i = 0; i < formula.references.size(); ++i) {
    const auto rect = formula.reference_in(cell, i);
    if (!rect) {
      found_ = make_ref<ModelParts>();
      return false;
    }
    add_cells_of(last_record_, *rect);
  }
  raise_contains_constant(formula.constants);
  if (formula.error_constant) part_->put_HasError(true);
  return true;
}

void Parser::remember(const host::FormulaPattern& pattern, qtoContainsConstant before) {
  if (pattern.id == 0 || before != qtoNoConstantInFormula) return;
  if (memory_.find(last_record_->stamp, pattern.id)) return;
  auto formula = remembered(table_.tokens, part_->cell(), pattern.references);
  if (formula) formula->constants = part_->constants();
  memory_.keep(last_record_->stamp, pattern.id, std::move(formula));
}

void Parser::Parse(ModelPart& part, bool just_read) {
  Procedure proc("Parser", "Parse");
  const diagnostics::Subject subject(&part, place_of);
  part.set_checked(false);
  if (part.is_unknown()) {
    part.set_direct(nullptr);
    part.set_all(nullptr);
    part.set_checked(true);
    return;
  }
  const std::string_view formula = just_read ? part.held_formula() : part.read_formula_again();
  if (!formula.starts_with('=')) {
    part.put_IsConstant(true);
    part.set_direct(nullptr);
    part.set_all(nullptr);
    part.set_checked(true);
    return;
  }
  found_ = make_ref<ModelParts>();
  if (!proc.step([&] { enter_part(part); })) return;
  bool drill_intelligently = false;
  const host::FormulaPattern pattern = pattern_of(part);
  const bool exact = options().reading == qtoReadExact;
  if (exact) {
    if (!proc.step([&] { drill_intelligently = read_all_exactly(formula, pattern); })) return;
  } else if (!follow_remembered(pattern)) {
    const qtoContainsConstant constants = part.constants();
    split_formula(formula, table_);
    do_parse(table_.tokens, drill_intelligently);
    if (!drill_intelligently) remember(pattern, constants);
    if (!proc.step([&] { check_for_unknown_precedents(); })) return;
  }
  // A part that was drilled intelligently before shows its own list, not that of another
  // part.
  if (drill_intelligently || leaves_something_out(options()) || part.drilled_intelligently())
    keep_all_precedents();
  if (drill_intelligently) exact ? read_chosen_exactly(pattern) : parse_functions_intelligently();
  part.set_direct(found_);
  part.set_checked(true);
  const bool any = found_->size() > 0;
  part.put_IsConstant(!any);
  if (any) parse_zeros_blanks_dates_intelligently();
  part.set_all(part.drilled_intelligently() ? all_ : nullptr);
  if (found_->size() == 0) found_ = nullptr;
}

/// What the first walk found; only a part that drops some of it keeps this list.
void Parser::keep_all_precedents() { all_ = found_->copy(); }

}  // namespace qto
