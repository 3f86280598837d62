#pragma once

#include <cstddef>
#include <cstdint>

/// What a reader accepts before it refuses a file as too large. Real workbooks stay far below;
/// crafted ones would otherwise turn some hundred kilobytes into all of a machine's memory or time.
namespace qto::embedded::limits {

inline constexpr std::uint64_t part_bytes = std::uint64_t{4} << 30;
/// All parts together may inflate to this plus `inflate_ratio` times the size of the file.
inline constexpr std::uint64_t inflate_allowance = std::uint64_t{256} << 20;
inline constexpr std::uint64_t inflate_ratio = 200;
/// An encrypted file; it is decrypted in memory.
inline constexpr std::size_t encrypted_bytes = std::size_t{1} << 30;
/// One tag or comment; the tokenizer holds it whole.
inline constexpr std::int64_t token_bytes = 8 << 20;
inline constexpr int element_depth = 256;
/// UTF-16 units of a cell's text (ECMA-376 Part 1, annex on limits of applications).
inline constexpr std::size_t cell_text_units = 32'767;
/// Formula texts beyond this are cut; no application writes more than 8,192 characters.
inline constexpr std::size_t formula_bytes = std::size_t{1} << 20;
inline constexpr std::size_t sheets = 100'000;
inline constexpr std::size_t styles = 65'536;
/// Cells that get the formula of an array or data table in a book, overlaps counted.
inline constexpr std::int64_t array_cells = 8'000'000;
inline constexpr std::size_t large_array_blocks = 4'096;

}  // namespace qto::embedded::limits
