#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qto/automation/ref.hpp"
#include "qto/model/model_part.hpp"

namespace qto::cli {

/// The part with its display values (title, text, local address) computed. Of a cell it is a copy
/// that nobody else holds: display values take more room than all else in a part, and a tree may
/// have a million. What the drill found out (precedents, constants) is in `part` only.
Ref<ModelPart> displayed(ModelPart& part);

/// What people read about a part, each field one line without control characters.
struct PartText {
  std::string address;
  std::string title;
  std::string formula;  ///< "" for constants
  std::string value;  ///< as displayed; in words where there is none, a text that reads as a number
                      ///< in quotes
};

/// The value of a cell that holds nothing.
inline constexpr std::string_view no_content = "(empty)";

/// The texts of a part. Formulas and titles are cut to a readable length unless `full`; books other
/// than `home_book` are named.
PartText describe(ModelPart& part, std::string_view home_book, bool full);

/// Sheet-qualified, in apostrophes only where they are needed: Costs!D8, 'Cash flow'!B2.
std::string readable_address(const ModelPart& part, std::string_view home_book);
std::string readable_address(const ModelPart& part, std::string_view home_book,
                             std::string_view address);

/// "2,096,908"
std::string grouped(std::int64_t number);
/// "1 cell", "3,000 cells"
std::string counted(std::size_t count, std::string_view what);

/// Letters of a UTF-8 text.
std::size_t letters(std::string_view text) noexcept;
/// Appends blanks up to a width in letters.
void pad(std::string& text, std::size_t width);
/// Blanks instead of line breaks and other control characters, which a terminal might obey.
std::string one_line(std::string_view text);

}  // namespace qto::cli
