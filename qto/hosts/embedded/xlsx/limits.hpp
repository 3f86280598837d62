#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace qto::embedded {

/// What a reader accepts before it refuses a file as too large. Real workbooks stay far below;
/// crafted ones would otherwise turn some hundred kilobytes into all of a machine's memory or time.
struct Limits {
  std::uint64_t part_bytes = std::uint64_t{4} << 30;  ///< of one part, inflated
  /// All parts together may inflate to this plus `inflate_ratio` times the size of the file.
  std::uint64_t inflated_bytes = std::uint64_t{256} << 20;
  std::uint64_t inflate_ratio = 200;
  std::uint64_t parts = 500'000;
  /// An encrypted file; it is decrypted in memory.
  std::uint64_t encrypted_bytes = std::uint64_t{1} << 30;
  /// One tag or comment; the tokenizer holds it whole.
  std::uint64_t xml_tag_bytes = 8 << 20;
  std::uint64_t xml_depth = 256;
  std::uint64_t xml_attributes = 250'000;  ///< of one element
  std::uint64_t sheets = 100'000;
  std::uint64_t strings = 20'000'000;  ///< shared ones
  /// UTF-16 units of a cell's text; what is longer is cut, as the format itself says
  /// (ECMA-376 Part 1, annex on limits of applications).
  std::uint64_t text_length = 32'767;
  /// Bytes of a formula's text; no application writes more than 8,192 characters.
  std::uint64_t formula_length = std::uint64_t{1} << 20;
  std::uint64_t cells = 100'000'000;                  ///< stored ones, of all sheets
  std::uint64_t cell_bytes = std::uint64_t{4} << 30;  ///< memory that the cells take
  /// Cells that get the formula of an array or data table, overlaps counted.
  std::uint64_t array_cells = 8'000'000;
  /// Arrays and data tables of a sheet that are too large to store their formula in every cell.
  std::uint64_t large_arrays = 4'096;
};
inline constexpr Limits standard_limits{};

/// Under what name a limit is set from outside.
struct LimitName {
  std::string_view name;
  std::uint64_t Limits::*value;
  std::string_view what;
};
std::span<const LimitName> limit_names() noexcept;

}  // namespace qto::embedded
