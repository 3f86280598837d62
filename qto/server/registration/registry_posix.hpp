#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "qto/server/tables/table.hpp"

/// Where clients look up which library serves a class: text files with one class a line, "name,
/// tab, class identifier, tab, path of the library". The user's own file comes before the system's.
namespace qto::server {

struct Registration {
  std::string program_id;  ///< "QTOEngine.DrillDown"
  Guid class_id;
  std::string library;
};

/// $XDG_DATA_HOME/qto/servers (~/.local/share without it); nothing without a home.
std::optional<std::filesystem::path> user_registry();
/// qto/servers below the first of $XDG_DATA_DIRS, /usr/local/share without it.
std::filesystem::path system_registry();

/// The entries of a file; of a file that is not there, none. Lines that are no entries are skipped.
std::vector<Registration> read_registry(const std::filesystem::path& file);
/// Enters all classes of a library, in the place of earlier entries of the same classes, or takes
/// them out when `module` is empty. Other entries stay. The file is replaced as a whole or left as
/// it was; several processes may do so at once. 0, or the system's number of the failure.
int update_registry(const std::filesystem::path& file, const LibraryTable& library,
                    const std::string& module);

}  // namespace qto::server
