#pragma once

namespace qto::text {

/// The character that stands for all that differ from it in letter case only: Unicode simple case
/// folding. Others stay themselves.
char32_t fold_case(char32_t c) noexcept;

}  // namespace qto::text
