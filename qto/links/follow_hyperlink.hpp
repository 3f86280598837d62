#pragma once

#include <string_view>

namespace qto::Main {

/// Asks the shared application to follow an address (mail, browser) through its first open
/// workbook, or through a new one that is closed again. Throws when that fails or when there is no
/// application yet.
void follow_hyperlink(std::string_view address);

}  // namespace qto::Main
