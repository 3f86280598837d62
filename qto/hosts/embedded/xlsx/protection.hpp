#pragma once

#include <string_view>

#include "qto/hosts/embedded/book/sheet.hpp"
#include "qto/hosts/embedded/xlsx/xml_events.hpp"

namespace qto::embedded {

/// The attributes of a protection's element that tell of its password.
struct PasswordAttributes {
  std::string_view legacy_hash, algorithm, hash, salt, spins;
};
/// Those of sheetProtection and of workbookProtection (ECMA-376 Part 1, 18.3.1.85 and 18.2.29).
inline constexpr PasswordAttributes sheet_password{"password", "algorithmName", "hashValue",
                                                   "saltValue", "spinCount"};
inline constexpr PasswordAttributes book_password{"workbookPassword", "workbookAlgorithmName",
                                                  "workbookHashValue", "workbookSaltValue",
                                                  "workbookSpinCount"};

/// Reads what the file knows of the password; other attributes say what is protected by it.
void read_password(const Attributes& attributes, const PasswordAttributes& names,
                   SheetProtection& into);

}  // namespace qto::embedded
