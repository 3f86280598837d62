#include "qto/hosts/embedded/evaluate/lookup_index.hpp"

#include <algorithm>
#include <bit>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/compare.hpp"

namespace qto::embedded {

namespace {

/// Blocks smaller than this are looked through faster than an index is kept.
constexpr int least_rows = 32;
/// An index costs about as much as this many looks through the block.
constexpr int looks_before_index = 8;
/// Columns that are remembered at a time.
constexpr std::size_t most_columns = 64;

std::uint32_t hash_of(const ValueView& value) {
  std::uint64_t hash = 0;
  if (value.is_text())
    hash = text::hash_fold(value.text());
  else if (value.is_boolean())
    hash = value.boolean() ? 2 : 1;
  else
    hash = std::bit_cast<std::uint64_t>(value.number() == 0 ? 0.0 : value.number());
  return static_cast<std::uint32_t>((hash * 0x9e3779b97f4a7c15u) >> 32);
}

bool equal(const ValueView& a, const ValueView& b) {
  if (a.type() != b.type()) return false;
  return a.is_number() ? a.number() == b.number() : equal_values(a, b);
}

bool has_digit(std::string_view text) {
  return std::ranges::any_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

LookupIndex::LookupIndex(const Area& block) : block_(block), texts_(&block.sheet->book().texts) {
  const CellStore& cells = block.sheet->cells;
  std::int64_t count = 0;
  cells.for_each(block.rect, [&](CellPos, const Cell&, FormulaId) { ++count; });
  entries_.reserve(count);
  slots_.assign(std::bit_ceil(static_cast<std::size_t>(count) * 2 + 1), none);
  std::vector<Entry> last(slots_.size(), none);
  cells.for_each(block.rect, [&](CellPos pos, const Cell& cell, FormulaId) {
    add(pos.row - block.rect.first.row, view_of(cell, *texts_), last);
  });
}

void LookupIndex::add(std::int32_t row, const ValueView& value, std::vector<Entry>& last) {
  if (value.is_empty() || value.is_error()) return;
  if (value.is_text() && has_digit(value.text())) texts_with_digits_ = true;
  const std::uint32_t hash = hash_of(value);
  const std::size_t slot = slot_of(hash, value);
  const auto entry = static_cast<Entry>(entries_.size());
  entries_.push_back({row, none, hash});
  if (slots_[slot] == none)
    slots_[slot] = entry;
  else
    entries_[last[slot]].next = entry;
  last[slot] = entry;
}

ValueView LookupIndex::value(Entry entry) const {
  const CellPos first = block_.rect.first;
  return view_of(*block_.sheet->cells.find({first.row + entries_[entry].row, first.column}),
                 *texts_);
}

/// The slot of that value, or the free one where it belongs.
std::size_t LookupIndex::slot_of(std::uint32_t hash, const ValueView& wanted) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = hash & mask;
  for (; slots_[slot] != none; slot = (slot + 1) & mask) {
    const Entry entry = slots_[slot];
    if (entries_[entry].hash == hash && equal(value(entry), wanted)) break;
  }
  return slot;
}

LookupIndex::Entry LookupIndex::first(const ValueView& wanted) const {
  return slots_[slot_of(hash_of(wanted), wanted)];
}

LookupIndexes::LookupIndexes() = default;
LookupIndexes::~LookupIndexes() = default;

const LookupIndex* LookupIndexes::over(const Area& block) {
  if (block.rect.rows() < least_rows) return nullptr;
  Column& column = column_of(block);
  column.used = ++clock_;
  const std::uint64_t revision = block.sheet->cells.revision(block.rect.first.column);
  if (column.revision != revision) {
    column.revision = revision;
    column.looks = 0;
    column.index.reset();
  }
  if (!column.index && ++column.looks > looks_before_index) column.index.emplace(block);
  return column.index ? &*column.index : nullptr;
}

/// The record of a block; the one unused for longest makes room.
LookupIndexes::Column& LookupIndexes::column_of(const Area& block) {
  const auto same = std::ranges::find(columns_, block, &Column::block);
  if (same != columns_.end()) return *same;
  if (columns_.size() < most_columns) return columns_.emplace_back(Column{block, 0, 0, 0, {}});
  Column& oldest = *std::ranges::min_element(columns_, {}, &Column::used);
  oldest = Column{block, 0, 0, 0, {}};
  return oldest;
}

}  // namespace qto::embedded
