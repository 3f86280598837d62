#pragma once

#include <string>
#include <vector>

#include "qto/host/open_error.hpp"

namespace qto::embedded {

/// A link that is stored in a workbook file.
struct StoredLink {
  enum class Kind { workbook, internet, application };
  Kind kind = Kind::workbook;
  /// The full name of the linked workbook as the file stores it, or "application|document".
  std::string source;
  /// Where the linked workbook is: at its stored place, beside the file that refers to it, or in
  /// one of the folders; "" when there is no such file.
  std::string found_at;
};

/// The links of a workbook file in the order in which it stores them. The file is read no further
/// than that, nothing else is opened, and no internet address is contacted. Throws host::OpenError.
std::vector<StoredLink> read_stored_links(const std::string& file,
                                          const std::vector<std::string>& folders = {},
                                          const std::string& password = {});

}  // namespace qto::embedded
