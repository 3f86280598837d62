#include "qto/model/range_block.hpp"

#include "qto/host/range.hpp"
#include "qto/host/worksheet.hpp"

namespace qto {

RangeBlock::RangeBlock(Ref<SheetRecord> sheet, const Rect& rect)
    : sheet_(std::move(sheet)), rect_(rect) {}

CellPos RangeBlock::cell_at(std::int64_t place) const noexcept {
  const std::int64_t columns = rect_.columns();
  return {rect_.first.row + static_cast<std::int32_t>(place / columns),
          rect_.first.column + static_cast<std::int32_t>(place % columns)};
}

RangeBlock::Page& RangeBlock::make_page(std::int64_t place) {
  const auto number = static_cast<std::size_t>(place / Page::places);
  if (number >= pages_.size()) pages_.resize(number + 1);
  if (!pages_[number]) pages_[number] = std::make_unique<Page>();
  return *pages_[number];
}

ModelPart* RangeBlock::at(std::int64_t place) {
  if (is_removed(place)) return nullptr;
  Ref<ModelPart>& part = make_page(place).parts[place % Page::places];
  if (!part) {
    part = make_ref<ModelPart>();
    part->create_cell(sheet_, cell_at(place));
  }
  return part.get();
}

std::int64_t RangeBlock::place_of(const PartKey& key) const noexcept {
  CellPos cell;
  if (!key.is_cell_of(sheet_->prefix, cell) || !rect_.contains(cell)) return nowhere;
  return place_of(cell);
}

std::int64_t RangeBlock::place_of(CellPos cell) const noexcept {
  return std::int64_t{cell.row - rect_.first.row} * rect_.columns() + cell.column -
         rect_.first.column;
}

ModelPart* RangeBlock::find(const PartKey& key) {
  const std::int64_t place = place_of(key);
  return place == nowhere ? nullptr : at(place);
}

bool RangeBlock::holds(const ModelPart& part) const noexcept {
  const auto& sheet = part.sheet_record();
  return sheet && sheet->prefix == sheet_->prefix && rect_.contains(part.cell());
}

bool RangeBlock::shows(const ModelPart& part) const noexcept {
  return holds(part) && !is_removed(place_of(part.cell()));
}

void RangeBlock::replace(const ModelPart& part, const Ref<ModelPart>& by) {
  const std::int64_t place = place_of(part.cell());
  make_page(place).parts[place % Page::places] = by;
}

bool RangeBlock::remove(const PartKey& key) {
  const std::int64_t place = place_of(key);
  if (place == nowhere || is_removed(place)) return false;
  Page& page = make_page(place);
  page.removed.set(place % Page::places);
  page.parts[place % Page::places] = nullptr;
  ++vacated_;
  return true;
}

Ref<RangeBlock> RangeBlock::clone() {
  auto copy = make_ref<RangeBlock>(sheet_, rect_);
  copy->pages_.reserve(pages_.size());
  for (const auto& page : pages_)
    copy->pages_.push_back(page ? std::make_unique<Page>(*page) : nullptr);
  copy->vacated_ = vacated_;
  return copy;
}

/// A cell that nobody has looked at yet needs no part to be asked.
bool RangeBlock::has_error_at(std::int64_t place) {
  const Page* page = page_of(place);
  if (page && page->removed[place % Page::places]) return false;
  if (page && page->parts[place % Page::places])
    return page->parts[place % Page::places]->HasError();
  return sheet_->sheet->cell_value(cell_at(place)).is_error();
}

/// Cells outside the used block are blank.
std::optional<Rect> RangeBlock::used() const {
  const auto range = sheet_->sheet->UsedRange();
  const CellPos first{range->Row(), range->Column()};
  return rect_.intersect(
      {first, {first.row + range->RowsCount() - 1, first.column + range->ColumnsCount() - 1}});
}

bool RangeBlock::any_error(std::uint64_t drill) {
  if (asked_by_ == drill) return any_error_;
  any_error_ = false;
  if (const auto cells = used())
    for (CellPos cell = cells->first; cell.row <= cells->last.row && !any_error_; ++cell.row)
      for (cell.column = cells->first.column; cell.column <= cells->last.column && !any_error_;
           ++cell.column)
        any_error_ = has_error_at(place_of(cell));
  asked_by_ = drill;
  return any_error_;
}

}  // namespace qto
