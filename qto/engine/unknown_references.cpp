#include <utility>
#include <vector>

#include "qto/automation/error.hpp"
#include "qto/automation/text.hpp"
#include "qto/diagnostics/failure_number.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"

namespace qto {
namespace {

/// The worksheet of that name, or those from the first to the last of a span "North:South"; none
/// when one of them is not there.
std::vector<Ref<host::Worksheet>> sheets_of(const Ref<host::Workbook>& book,
                                            const std::string& name) {
  std::vector<Ref<host::Worksheet>> found;
  if (!book) return found;
  const std::size_t colon = name.find(':');  // no sheet's name holds one
  if (colon == std::string::npos) {
    if (auto sheet = ref_cast<host::Worksheet>(book->find_sheet(name))) found.push_back(sheet);
    return found;
  }
  const std::string_view first = std::string_view(name).substr(0, colon);
  const std::string_view last = std::string_view(name).substr(colon + 1);
  int ends = text::equal_fold(first, last) ? 1 : 0;
  for (int i = 1; i <= book->SheetsCount() && ends < 2; ++i) {
    const auto sheet = book->Sheets(i);
    const std::string sheet_name = sheet->Name();
    const bool end = text::equal_fold(sheet_name, first) || text::equal_fold(sheet_name, last);
    const bool inside = end || !found.empty();
    if (auto worksheet = inside ? ref_cast<host::Worksheet>(sheet) : nullptr)
      found.push_back(worksheet);
    ends += end ? 1 : 0;
  }
  if (ends < 2) found.clear();
  return found;
}

void add_cells(const Ref<SheetRecord>& sheet, const Rect& block, ModelParts& list) {
  for (std::int32_t row = block.first.row; row <= block.last.row; ++row) {
    for (std::int32_t column = block.first.column; column <= block.last.column; ++column) {
      auto cell = make_ref<ModelPart>();
      cell->create_cell(sheet, {row, column});
      list.AddExisting(cell);
    }
  }
}

/// Probe: the cells that a table of an open workbook, or a column of it, stands for.
Ref<host::Range> table_of(const ModelPart& part, host::Application& application) {
  const auto workbook = application.Workbooks()->find(part.WorkBookName());
  if (!workbook || workbook->WorksheetsCount() == 0) return nullptr;
  return ref_cast<host::Range>(workbook->Worksheets(1)->Evaluate(part.AddressShort()).object());
}

}  // namespace

void DrillDown::clsParser_UnknownObjectFound(Ref<ModelPart>& unknown, Ref<ModelParts>& list,
                                             std::int32_t& fatal_error) {
  Procedure proc("DrillDown", "clsParser_UnknownObjectFound");
  try {
    follow_unknown(unknown, list);
  } catch (const std::exception& failure) {
    fatal_error = diagnostics::number_of(failure);
  }
}

void DrillDown::follow_unknown(Ref<ModelPart>& unknown, Ref<ModelParts>& list) {
  if (application().Workbooks()->find(unknown->WorkBookName())) return try_to_find(unknown, *list);
  const std::string full_name = unknown->WorkBookFullName();
  const auto linked = context_->BooksOpened()->find(full_name);
  if (!linked) {
    // A book that was not opened once is not offered again.
    if (!context_->BooksNotOpened()->find(full_name)) ask_to_open(unknown, list);
    return;
  }
  if (linked->OpenIt(context_->application())) return try_to_find(unknown, *list);
  context_->BooksOpened()->Remove(full_name);
  linked->put_WhyNotOpened(qtownoOther);
  context_->BooksNotOpened()->AddExisting(linked);
}

void DrillDown::ask_to_open(Ref<ModelPart>& unknown, Ref<ModelParts>& list) {
  bool user_choice = true;
  raise_about(AskToOpenBook, unknown, user_choice);
  if (!user_choice)
    add_linked_book(*unknown, qtownoUserDecision, "");
  else if (open_linked_book(unknown) == qtoWNOOK)
    try_to_find(unknown, *list);
}

void DrillDown::try_to_find(const Ref<ModelPart>& part, ModelParts& list) {
  Procedure proc("DrillDown", "try_to_find");
  if (part->is_range())
    (void)proc.step([&] { find_range_of(part, list); });
  else if (part->is_name())
    (void)proc.step([&] {
      find_name_of(part);
      // A table goes by a name that is none of the defined ones.
      const auto table = part->is_unknown() ? table_of(*part, application()) : nullptr;
      if (!table) return;
      list.remove(part->Key());
      add_cells(make_ref<SheetRecord>(table->Worksheet(), context_), table->block(), list);
    });
  else
    throw AutomationError(ErrorNumber::out_of_range);
}

void DrillDown::find_range_of(const Ref<ModelPart>& part, ModelParts& list) {
  const auto workbook = application().Workbooks()->find(part->WorkBookName());
  bool removed = false;
  for (const auto& sheet : sheets_of(workbook, part->WorkSheetName())) {
    Rect block;
    if (!sheet->find_block(part->AddressShort(), block)) break;
    if (!std::exchange(removed, true)) list.remove(part->Key());
    add_cells(make_ref<SheetRecord>(sheet, context_), block, list);
  }
  if (!removed) part->put_Exists(false);
}

void DrillDown::find_name_of(const Ref<ModelPart>& part) {
  const auto workbook = application().Workbooks()->find(part->WorkBookName());
  Ref<host::DefinedName> name;
  if (workbook && part->WorkSheetName().empty()) {
    name = workbook->find_name(part->AddressShort());
  } else if (workbook) {
    const auto sheet = workbook->find_worksheet(part->WorkSheetName());
    if (sheet) name = sheet->find_name(part->AddressShort());
  }
  if (name)
    part->Create(name, "Name");
  else
    part->put_Exists(false);
}

void DrillDown::clsParser_ParserFoundDDEOLELink(const std::string& application,
                                                const std::string& document,
                                                const std::string& link, Ref<ModelPart>& part) {
  Procedure proc("DrillDown", "clsParser_ParserFoundDDEOLELink");
  DDEOLELink(application, document, link, part);
}

}  // namespace qto
