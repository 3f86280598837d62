#include "qto/model/range_block.hpp"

#include "qto/host/worksheet.hpp"

namespace qto {

RangeBlock::RangeBlock(Ref<SheetRecord> sheet, const Rect& rect)
    : sheet_(std::move(sheet)), rect_(rect) {}

CellPos RangeBlock::cell_at(std::int64_t place) const noexcept {
  const std::int64_t columns = rect_.columns();
  return {rect_.first.row + static_cast<std::int32_t>(place / columns),
          rect_.first.column + static_cast<std::int32_t>(place % columns)};
}

ModelPart* RangeBlock::at(std::int64_t place) {
  if (!removed_.empty() && removed_[place]) return nullptr;
  if (parts_.empty()) parts_.resize(size());
  Ref<ModelPart>& part = parts_[place];
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
  return holds(part) && (removed_.empty() || !removed_[place_of(part.cell())]);
}

bool RangeBlock::overlaps(const RangeBlock& other) const noexcept {
  const Rect& a = rect_;
  const Rect& b = other.rect_;
  return sheet_->prefix == other.sheet_->prefix && a.first.row <= b.last.row &&
         b.first.row <= a.last.row && a.first.column <= b.last.column &&
         b.first.column <= a.last.column;
}

void RangeBlock::replace(const ModelPart& part, const Ref<ModelPart>& by) {
  if (parts_.empty()) parts_.resize(size());
  parts_[place_of(part.cell())] = by;
}

bool RangeBlock::remove(const PartKey& key) {
  const std::int64_t place = place_of(key);
  if (place == nowhere) return false;
  if (removed_.empty()) removed_.resize(size());
  if (removed_[place]) return false;
  removed_[place] = true;
  if (!parts_.empty()) parts_[place] = nullptr;
  ++vacated_;
  return true;
}

Ref<RangeBlock> RangeBlock::clone() {
  auto copy = make_ref<RangeBlock>(sheet_, rect_);
  copy->parts_ = parts_;
  copy->removed_ = removed_;
  copy->vacated_ = vacated_;
  return copy;
}

/// A cell that nobody has looked at yet needs no part to be asked.
bool RangeBlock::has_error_at(std::int64_t place) {
  if (!removed_.empty() && removed_[place]) return false;
  if (!parts_.empty() && parts_[place]) return parts_[place]->HasError();
  return sheet_->sheet->cell_value(cell_at(place)).is_error();
}

bool RangeBlock::any_error(std::uint64_t drill) {
  if (asked_by_ == drill) return any_error_;
  asked_by_ = drill;
  any_error_ = false;
  for (std::int64_t place = 0; place < size() && !any_error_; ++place)
    any_error_ = has_error_at(place);
  return any_error_;
}

}  // namespace qto
