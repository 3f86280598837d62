#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/book/sheet.hpp"

namespace qto::embedded {

/// Whether the password takes a protection away. A protection without a hash has no password, any
/// text opens it; one whose algorithm is unknown or whose data is damaged is opened by none.
bool password_matches(const SheetProtection& protection, std::string_view password);

/// Takes the protection of a sheet or a book away. A wrong password fails, naming `of`.
void unprotect(SheetProtection& protection, const std::string& of, std::string_view password);

/// The 16-bit hash of ECMA-376 Part 1, 18.2.29, over the password's characters.
std::uint16_t legacy_password_hash(std::string_view password);

}  // namespace qto::embedded
