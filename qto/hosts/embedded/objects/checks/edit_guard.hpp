#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/book/book.hpp"

/// What is checked before cells are written. Failed checks throw HostFailure.
namespace qto::embedded {

std::int64_t cells_in(const std::vector<Rect>& blocks) noexcept;
/// No more cells than one edit may touch.
void check_size(const std::vector<Rect>& blocks);
/// The cells may be written: not locked, array formulas covered as a whole or not at all, and, when
/// every cell is going to be stored, not too many.
void check_editable(const Book& book, const Sheet& sheet, const std::vector<Rect>& blocks,
                    bool stores_every_cell);
/// The text (without "=") is a formula.
void check_formula(std::string_view body, CellPos at);

}  // namespace qto::embedded
