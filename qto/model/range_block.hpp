#pragma once

#include <cstdint>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/automation/ref.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/part_key.hpp"

namespace qto {

/// The cells of a large range as parts, along each row, rows from the top. A part is made when
/// somebody looks at it. All formulas of a drill that refer to the range share the block, so that a
/// reference to whole columns costs a formula next to nothing until its precedents are walked, and
/// the parts are made once.
class RangeBlock : public RefCounted {
 public:
  /// Ranges with fewer cells than this become parts at once.
  static constexpr std::int64_t least_cells = 4096;

  RangeBlock(Ref<SheetRecord> sheet, const Rect& rect);

  const Ref<SheetRecord>& sheet() const noexcept { return sheet_; }
  const Rect& rect() const noexcept { return rect_; }
  /// Places, of which some may have been vacated.
  std::int64_t size() const noexcept { return rect_.cells(); }
  std::int64_t count() const noexcept { return size() - vacated_; }
  /// The part at a place from 0; null where one was removed.
  ModelPart* at(std::int64_t place);
  /// The part under a key; null when the key is none of the block's.
  ModelPart* find(const PartKey& key);
  /// True for a part of one of the block's cells, removed or not.
  bool holds(const ModelPart& part) const noexcept;
  /// The same without those that were removed.
  bool shows(const ModelPart& part) const noexcept;
  bool overlaps(const RangeBlock& other) const noexcept;

  /// Puts a part for the same cell in the place of that cell's.
  void replace(const ModelPart& part, const Ref<ModelPart>& by);
  /// Removes the part under a key; false when there is none.
  bool remove(const PartKey& key);
  /// A block of its own with the same parts.
  Ref<RangeBlock> clone();

  /// True when a cell holds an error value, or its part says so. Asked once per drill.
  bool any_error(std::uint64_t drill);
  /// The drill that has walked all parts of the block.
  std::uint64_t walked_by = 0;

 private:
  static constexpr std::int64_t nowhere = -1;
  std::int64_t place_of(const PartKey& key) const noexcept;
  std::int64_t place_of(CellPos cell) const noexcept;
  CellPos cell_at(std::int64_t place) const noexcept;
  bool has_error_at(std::int64_t place);

  Ref<SheetRecord> sheet_;
  Rect rect_;
  std::vector<Ref<ModelPart>> parts_;  // empty until the first is looked at
  std::vector<bool> removed_;          // empty until one is removed
  std::int64_t vacated_ = 0;
  std::uint64_t asked_by_ = 0;
  bool any_error_ = false;
};

}  // namespace qto
