#pragma once

#include <string>
#include <string_view>

namespace qto::embedded {

/// Where a linked file stands: folder with its trailing separator ("" when not known) and name.
struct FileLocation {
  std::string folder;
  std::string name;
  bool operator==(const FileLocation&) const = default;
};

/// Reads the target of an external relationship: file URLs, Windows and POSIX paths, network
/// shares, internet addresses (kept as written), and paths relative to `base_folder`.
FileLocation locate_target(std::string_view target, std::string_view base_folder);

}  // namespace qto::embedded
