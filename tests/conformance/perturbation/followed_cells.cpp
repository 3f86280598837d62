#include "tests/conformance/perturbation/followed_cells.hpp"

#include <algorithm>

#include "qto/automation/error.hpp"
#include "qto/automation/text.hpp"
#include "qto/diagnostics/error_report.hpp"

namespace qto::embedded::conformance {
namespace {

/// Names are built on names; nobody builds so many levels.
constexpr std::int32_t levels_of_names = 100;

}  // namespace

FollowedCells::FollowedCells(const ChangeableCells& cells, const std::vector<Book*>& books,
                             const Ref<DrillOptions>& options)
    : cells_(cells), books_(books), drill_(make_ref<DrillDown>()) {
  drill_->putref_DrillOptions(options);
  drill_->AskToOpenBook.add([](Ref<ModelPart>&, bool& open) { open = false; });
  reports_ = diagnostics::error_reported().add([this](const diagnostics::ErrorReport& report) {
    report_ = report.description + " in " + std::string(report.member);
  });
}

FollowedCells::~FollowedCells() { diagnostics::error_reported().remove(reports_); }

Followed FollowedCells::of(const Ref<host::Range>& cell) {
  Followed found;
  report_.clear();
  names_.clear();
  try {
    drill_->putref_StartUnderlyingObject(cell);
    drill(found);
    found.failure = report_;
  } catch (const std::exception& failure) {
    found.failure = std::string("refused: ") + failure.what();
  }
  std::sort(found.cells.begin(), found.cells.end());
  found.cells.erase(std::unique(found.cells.begin(), found.cells.end()), found.cells.end());
  return found;
}

void FollowedCells::drill(Followed& found) {
  drill_->put_MaximumDepth(1);
  drill_->DrillHere();
  const Ref<ModelPart> start = drill_->StartModelPart();
  found.intelligently = start->IntelligentDrillingUsed();
  found.whole = start->DrillRemark().find("is followed whole") != std::string::npos;
  if (!start->DirectPrecedents()) return;
  bool names = false;
  start->DirectPrecedents()->for_each(
      [&](const ModelPart& part) { names |= part.ObjectType() == "Name"; });
  if (names) drill_through_names();
  collect(*start, *start->DirectPrecedents(), found);
}

void FollowedCells::drill_through_names() {
  bool at_start = true;
  const int token = drill_->BeforeGetPrecedents.add([&](Ref<ModelPart>& part, bool& cancel) {
    cancel = !at_start && part->ObjectType() != "Name";
    at_start = false;
  });
  drill_->put_MaximumDepth(levels_of_names);
  drill_->DrillHere();
  drill_->BeforeGetPrecedents.remove(token);
}

void FollowedCells::collect(ModelPart& part, ModelParts& list, Followed& found) {
  if (part.ObjectType() == "Name") {
    if (std::find(names_.begin(), names_.end(), &part) != names_.end()) return;
    names_.push_back(&part);
  }
  const bool large = list.Count() > static_cast<std::int32_t>(2 * cells_.size());
  if (large) add_from_large(list, found);
  list.for_each([&](ModelPart& precedent) {
    if (precedent.ObjectType() != "Name") {
      if (!large) add(precedent, found);
    } else if (precedent.DirectPrecedents()) {
      collect(precedent, *precedent.DirectPrecedents(), found);
    }
  });
}

void FollowedCells::add(ModelPart& part, Followed& found) {
  if (part.IsUnknown()) return;
  const Sheet* sheet = sheet_of(part);
  const auto area = sheet ? parse_range_text(part.AddressShort()) : std::nullopt;
  if (!area) return;
  if (!area->is_cell()) return cells_.find(*sheet, *area, found.cells);
  if (const auto cell = cells_.find(*sheet, area->first)) found.cells.push_back(*cell);
}

/// Whole columns have more cells than there are to change: each of those is looked for instead.
void FollowedCells::add_from_large(ModelParts& list, Followed& found) {
  const Ref<host::Workbooks> open = drill_->StartModelPart()->ExcelApplication()->Workbooks();
  Ref<host::Worksheet> sheet;
  const Sheet* of = nullptr;
  for (ChangeableCells::Index cell = 0; cell < cells_.size(); ++cell) {
    const CellAddress& place = cells_.place(cell);
    if (of != place.sheet)
      sheet = open->Item(place.sheet->book().name)->Worksheets(place.sheet->name);
    of = place.sheet;
    auto part = make_ref<ModelPart>();
    part->Create(sheet->Cells(place.pos.row, place.pos.column), "Range");
    if (list.Item(part->UniqueKey())) found.cells.push_back(cell);
  }
}

const Sheet* FollowedCells::sheet_of(const ModelPart& part) {
  const std::string sheet = part.WorkSheetName();
  const std::string book = part.WorkBookName();
  if (last_sheet_ && last_sheet_->name == sheet && last_sheet_->book().name == book)
    return last_sheet_;
  for (const Book* open : books_)
    if (text::equal_fold(open->name, book)) return last_sheet_ = open->find_sheet(sheet);
  return nullptr;
}

}  // namespace qto::embedded::conformance
