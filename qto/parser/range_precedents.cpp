#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/parser/parser.hpp"
#include "qto/parser/written_name.hpp"

namespace qto {

void Parser::add_new_range_found(const Qualifiers& at, std::string_view address) {
  Procedure proc("Parser", "add_new_range_found");
  if (at.book == own_book_) return add_cell_precedents(own_workbook_, at.sheet, address);
  auto workbook = find_book(at.book);
  if (!workbook && reopen_linked_book(at.path, at.book)) workbook = find_book(at.book);
  if (workbook)
    add_cell_precedents(workbook, at.sheet, address);
  else
    add_unknown_range(at, address);
}

/// A book that the engine opened earlier and somebody closed since.
bool Parser::reopen_linked_book(std::string_view path, std::string_view book) {
  bool opened = false;
  context_->BooksOpened()->for_each([&](LinkedBook& linked) {
    if (linked.Path() == path && linked.Name() == book)
      opened = linked.OpenIt(context_->application());
  });
  return opened;
}

void Parser::add_unknown_range(const Qualifiers& at, std::string_view address) {
  auto part = make_ref<ModelPart>(context_);
  part->Create(nullptr, "Range", address);
  part->put_WorkBookPath(undouble_apostrophes(at.path));
  part->put_WorkBookName(undouble_apostrophes(at.book));
  part->put_WorkSheetName(undouble_apostrophes(at.sheet));
  part->put_AddressShort(address);
  found_->AddExisting(part);
}

void Parser::add_possible_name_found(const Qualifiers& at, std::string_view name) {
  Procedure proc("Parser", "add_possible_name_found");
  // Between two delimiters there may be nothing but white space.
  if (name.empty()) return;
  if (at.book == own_book_) {
    part_->put_HasError(true);
    return;
  }
  auto part = make_ref<ModelPart>(context_);
  if (!proc.step([&] { part->putref_ParentRange(parent_range()); })) return;
  part->Create(nullptr, "Name", name);
  part->put_WorkBookPath(undouble_apostrophes(at.path));
  part->put_WorkBookName(undouble_apostrophes(at.book));
  part->put_WorkSheetName(at.sheet == own_sheet_ ? std::string() : undouble_apostrophes(at.sheet));
  found_->AddExisting(part);
}

void Parser::add_cell_precedents(const Ref<host::Workbook>& workbook, std::string_view sheet,
                                 std::string_view address) {
  Procedure proc("Parser", "add_cell_precedents");
  // Nearly every reference is to the formula's own sheet.
  if (sheet == own_sheet_ && workbook == own_workbook_ && last_record_) {
    (void)proc.step([&] { add_cells_of(last_record_, address); });
    return;
  }
  for (const auto& record : sheets_for_reference(workbook, sheet)) {
    if (!proc.step([&] {
          if (!record) throw host::HostFailure(host::general_failure, "a chart sheet has no cells");
          add_cells_of(record, address);
        }))
      return;
  }
}

std::vector<Ref<SheetRecord>> Parser::sheets_for_reference(const Ref<host::Workbook>& workbook,
                                                           std::string_view sheet) {
  Procedure proc("Parser", "sheets_for_reference");
  std::vector<Ref<SheetRecord>> records;
  const bool done = proc.step([&] {
    records.clear();
    // A part whose making failed half way may have a formula and no book.
    if (!workbook) throw NumberedFailure(91, "the part lies in no workbook");
    const std::size_t colon = sheet.find(':');
    if (colon == std::string_view::npos) {
      records.push_back(record_named(workbook, sheet));
      return;
    }
    std::string_view first = sheet.substr(0, colon);
    std::string_view last = sheet.substr(colon + 1);
    if (first.starts_with('\'')) first.remove_prefix(1);
    if (last.ends_with('\'')) last.remove_suffix(1);
    const int from = workbook->Sheets(undouble_apostrophes(trim_white_space(first)))->Index();
    const int to = workbook->Sheets(undouble_apostrophes(trim_white_space(last)))->Index();
    for (int position = from; position <= to; ++position) {
      const auto worksheet = ref_cast<host::Worksheet>(workbook->Sheets(position));
      records.push_back(worksheet ? record_of(worksheet) : nullptr);
    }
  });
  if (!done) records.clear();
  return records;
}

void Parser::add_cells_of(const Ref<SheetRecord>& sheet, std::string_view address) {
  Rect block;
  if (!sheet->sheet->find_block(address, block))
    throw host::HostFailure(host::general_failure, "no range " + std::string(address));
  add_cells_of(sheet, block);
}

/// Of a whole sheet, which nobody could list, the used cells count.
void Parser::add_cells_of(const Ref<SheetRecord>& sheet, const Rect& written) {
  constexpr std::int64_t most_cells = std::int64_t{4} * max_rows;
  Rect rect = written;
  if (rect.cells() > most_cells)
    rect = rect.intersect(sheet->sheet->UsedRange()->block()).value_or(Rect::cell(rect.first));
  if (rect.cells() >= RangeBlock::least_cells && found_->add_block(block_of(sheet, rect))) return;
  for (std::int32_t row = rect.first.row; row <= rect.last.row; ++row) {
    for (std::int32_t column = rect.first.column; column <= rect.last.column; ++column) {
      auto part = make_ref<ModelPart>();
      part->create_cell(sheet, {row, column});
      found_->AddExisting(part);
    }
  }
}

const Ref<RangeBlock>& Parser::block_of(const Ref<SheetRecord>& sheet, const Rect& rect) {
  for (const Ref<RangeBlock>& block : blocks_)
    if (block->sheet() == sheet && block->rect() == rect) return block;
  return blocks_.emplace_back(make_ref<RangeBlock>(sheet, rect));
}

Ref<SheetRecord> Parser::record_named(const Ref<host::Workbook>& workbook, std::string_view sheet) {
  if (const auto found = workbook->find_worksheet(trim_white_space(sheet))) return record_of(found);
  const std::string single = undouble_apostrophes(sheet);
  if (const auto found = workbook->find_worksheet(single)) return record_of(found);
  return record_of(workbook->Worksheets(single));
}

/// One record per sheet, as long as the sheet keeps its name and place.
Ref<SheetRecord> Parser::record_of(const Ref<host::Worksheet>& sheet) {
  const std::uint64_t stamp = sheet->IdentityStamp();
  if (stamp == 0) return make_ref<SheetRecord>(sheet, context_);
  Ref<SheetRecord>& record = records_[stamp];
  if (!record) record = make_ref<SheetRecord>(sheet, context_);
  return record;
}

}  // namespace qto
