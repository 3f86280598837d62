#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/formats/format_section.hpp"

namespace qto::embedded::formats {

/// The one to four sections of a format code, in order; nothing for a malformed code.
std::optional<std::vector<Section>> parse_sections(std::string_view code);

/// Settles the role of every token of a section and its layout: which digits are decimals, whether
/// m is a month or a minute, what a comma means. False when the tokens do not go together.
bool lay_out(Section& section);

}  // namespace qto::embedded::formats
