#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "qto/automation/address.hpp"
#include "qto/automation/ref.hpp"

namespace qto {

/// The identity of a part in a collection: its unique key without regard to letter case, in 8
/// bytes.
///
/// The key of a cell is the number of its sheet's prefix ('folder\[book]sheet'!) and its position;
/// neither equality nor hashing needs the text. Every other key carries its folded text. A text
/// that reads as a prefix and a plain cell address always becomes the first form, so two keys are
/// equal exactly when their texts are.
class PartKey {
 public:
  PartKey() noexcept = default;
  PartKey(const PartKey& other) noexcept : bits_(other.bits_) { acquire(); }
  PartKey(PartKey&& other) noexcept : bits_(std::exchange(other.bits_, 0)) {}
  PartKey& operator=(PartKey other) noexcept {
    std::swap(bits_, other.bits_);
    return *this;
  }
  ~PartKey() { release(); }

  /// `prefix` comes from prefix_number.
  static PartKey of_cell(std::uint32_t prefix, CellPos pos) noexcept;
  static PartKey of_text(std::string_view unique_key);
  /// The number of a sheet's prefix, ending in "'!"; the same for prefixes that differ in case
  /// only.
  static std::uint32_t prefix_number(std::string_view prefix);

  bool is_set() const noexcept { return bits_ != 0; }
  /// Tells the position of a cell on the sheet with that prefix; false for every other key.
  bool is_cell_of(std::uint32_t prefix, CellPos& pos) const noexcept;
  std::uint64_t hash() const noexcept;
  bool operator==(const PartKey& other) const noexcept {
    return bits_ == other.bits_ || (is_text() && other.is_text() && same_text(other));
  }

 private:
  class FoldedText;
  static constexpr std::uint64_t text_flag = std::uint64_t{1} << 63;
  bool is_text() const noexcept { return bits_ & text_flag; }
  const FoldedText* text() const noexcept;
  bool same_text(const PartKey& other) const noexcept;
  void acquire() const noexcept;
  void release() const noexcept;

  // Cell: prefix, row and column packed (never 0, prefixes count from 1). Text: pointer, top bit
  // set.
  std::uint64_t bits_ = 0;
};

}  // namespace qto
