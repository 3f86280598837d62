#pragma once

#include <string_view>

#include "qto/host/sheet.hpp"

/// Edits of sheets that the host interface does not name.
namespace qto::embedded {

/// Deletes a sheet of the embedded host; its handles die, references to it become #REF! values.
/// Throws HostFailure for the last visible sheet and for a locked structure.
void delete_sheet(const Ref<host::Sheet>& sheet);
/// Renames a sheet; formulas, names and charts that refer to it follow. Array formulas too large to
/// be edited do not. Throws HostFailure for an impossible name and for a locked structure.
void rename_sheet(const Ref<host::Sheet>& sheet, std::string_view new_name);

}  // namespace qto::embedded
