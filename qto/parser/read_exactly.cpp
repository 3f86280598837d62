#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/parser/parser.hpp"

namespace qto {

/// Makes parts of what the exact reader finds.
class Parser::ExactSurroundings final : public exact::Surroundings {
 public:
  explicit ExactSurroundings(Parser& parser) : parser_(parser) {}

  Ref<host::Workbook> find_book(std::string_view path, std::string_view book) override {
    if (auto open = parser_.find_book(book)) return open;
    return parser_.reopen_linked_book(path, book) ? parser_.find_book(book) : nullptr;
  }
  Ref<SheetRecord> record_of(const Ref<host::Worksheet>& sheet) override {
    return parser_.record_of(sheet);
  }
  void add_area(const Ref<SheetRecord>& sheet, const Rect& rect) override {
    parser_.add_cells_of(sheet, rect);
  }
  void add_name(const Ref<host::DefinedName>& name, std::string_view text) override {
    auto part = make_ref<ModelPart>(parser_.context_);
    part->putref_ParentRange(parser_.cell_of_names());
    part->Create(name, "Name", text);
    parser_.found_->AddExisting(part);
  }
  void add_unknown_area(const exact::ClosedPlace& place, std::string_view address) override {
    add_unknown("Range", place, address);
  }
  void add_unknown_name(const exact::ClosedPlace& place, std::string_view name) override {
    add_unknown("Name", place, name);
  }
  void add_link(std::string_view application, std::string_view document,
                std::string_view item) override {
    parser_.link_found({application, document}, item);
  }
  void add_constant(qtoContainsConstant kind) override { parser_.raise_contains_constant(kind); }
  void remark(std::string_view text) override { parser_.part_->add_remark(text); }
  void opaque_call(std::string_view function) override {
    parser_.part_->add_remark(std::string(function) + " reads what this formula does not show");
    Ref<ModelPart> part = parser_.part_;
    parser_.OpaqueCallFound(part);
  }

 private:
  void add_unknown(std::string_view type, const exact::ClosedPlace& place,
                   std::string_view address) {
    auto part = make_ref<ModelPart>(parser_.context_);
    if (type == "Name") part->putref_ParentRange(parser_.cell_of_names());
    part->Create(nullptr, type, address);
    part->put_WorkBookPath(place.path);
    part->put_WorkBookName(place.book);
    part->put_WorkSheetName(place.sheet);
    parser_.found_->AddExisting(part);
  }

  Parser& parser_;
};

/// The cell that uses the names of the formula being read; of a start that is none, the one that a
/// name of its book is seen from when no cell uses it.
Ref<host::Range> Parser::cell_of_names() {
  if (!parents_.empty())
    if (auto range = ref_cast<host::Range>(parents_.back()->UnderlyingObject())) return range;
  if (own_worksheet_) return own_worksheet_->Cells(1, 1);
  const bool any_sheet = own_workbook_ && own_workbook_->WorksheetsCount() > 0;
  return any_sheet ? own_workbook_->Worksheets(1)->Cells(1, 1) : nullptr;
}

/// A name is read from the cell that uses it, on the sheet that it belongs to.
exact::Site Parser::exact_site() {
  if (const auto& sheet = part_->sheet_record()) return {own_workbook_, sheet, part_->cell()};
  exact::Site site{own_workbook_, nullptr, {}};
  const auto user = cell_of_names();
  if (user) site.cell = user->block().first;
  if (own_worksheet_)
    site.sheet = record_of(own_worksheet_);
  else if (user && user->Worksheet()->Workbook() == own_workbook_)
    site.sheet = record_of(user->Worksheet());
  else if (own_workbook_ && own_workbook_->WorksheetsCount() > 0)
    site.sheet = record_of(own_workbook_->Worksheets(1));
  return site;
}

/// Collects every precedent; true when some call is to be followed where it chooses. What the host
/// shows of a formula changes when one of the books that it refers to is opened.
bool Parser::read_all_exactly(std::string_view formula, const host::FormulaPattern& pattern) {
  Procedure proc("Parser", "read_all_exactly");
  if (const std::uint32_t signature = options_signature(); signature != exact_options_) {
    exact_.forget();
    exact_options_ = signature;
  }
  found_ = make_ref<ModelParts>();
  part_->clear_remark();
  const exact::Site site = exact_site();
  bool chooses = follow_exactly(formula, pattern, site);
  if (!found_->any_unknown()) return chooses;
  const std::string before(formula);
  check_for_unknown_precedents();
  const std::string_view now = part_->read_formula_again();
  if (now == before || !now.starts_with('=')) return chooses;
  found_ = make_ref<ModelParts>();
  part_->clear_remark();
  chooses = follow_exactly(now, pattern, site);
  check_for_unknown_precedents();
  return chooses;
}

/// A text that is no formula to us is read as it is written.
bool Parser::follow_exactly(std::string_view formula, const host::FormulaPattern& pattern,
                            const exact::Site& site) {
  ExactSurroundings surroundings(*this);
  const auto answer = exact_.follow_all(formula, pattern, site, options(), surroundings);
  if (answer.why_broken.empty()) return answer.chooses;
  part_->add_remark("read as text, for " + answer.why_broken);
  split_formula(formula, table_);
  bool second_pass = false;
  do_parse(table_.tokens, second_pass);
  return false;
}

void Parser::read_chosen_exactly(const host::FormulaPattern& pattern) {
  Procedure proc("Parser", "read_chosen_exactly");
  found_ = make_ref<ModelParts>();
  part_->put_IntelligentDrillingUsed(true);
  const std::string formula(part_->held_formula());
  ExactSurroundings surroundings(*this);
  exact_.follow_chosen(formula, pattern, exact_site(), options(), surroundings);
  if (found_->any_unknown()) check_for_unknown_precedents();
}

}  // namespace qto
