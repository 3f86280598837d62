#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "qto/automation/address.hpp"

namespace qto::embedded {

/// Numbers given to cells of one sheet, kept so that the smallest number inside a block is found
/// without looking at each cell: minima of 64 cells and of 64 times 64 cells are kept too.
class StackOrder {
 public:
  static constexpr std::uint32_t none = 0xFFFFFFFFu;

  void set(CellPos pos, std::uint32_t number);
  /// Takes the number away.
  void reset(CellPos pos) noexcept;
  /// The smallest number inside the block, none when no cell there has one.
  std::uint32_t smallest_in(const Rect& rect) const noexcept;

 private:
  static constexpr int rows = 64;
  struct Leaf {
    Leaf() { numbers.fill(none); }
    std::array<std::uint32_t, rows> numbers;
    std::uint32_t smallest = none;
  };
  struct Page {
    std::array<std::unique_ptr<Leaf>, rows> leaves;
    std::uint32_t smallest = none;
  };
  using Column = std::vector<std::unique_ptr<Page>>;

  static std::uint32_t smallest_in_page(const Page& page, int first, int last) noexcept;

  std::vector<Column> columns_;
};

}  // namespace qto::embedded
