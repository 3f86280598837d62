#pragma once

#include <map>
#include <string>
#include <vector>

#include "cli/asking/arguments.hpp"
#include "cli/output/json_writer.hpp"
#include "cli/terminal/progress.hpp"
#include "qto/hosts/embedded/stored_links.hpp"

namespace qto::cli {

/// The links between the books of a folder and its subfolders.
struct FolderLinks {
  struct BookLinks {
    std::vector<embedded::StoredLink> links;
    std::vector<std::string> referred_to_by;  ///< full names
    std::string problem;                      ///< why its links could not be read, or ""
  };
  std::string folder;
  std::map<std::string, BookLinks> books;  ///< by full name
};

/// Reads the links of every workbook file in the folder. Throws Complaint when it cannot be listed.
FolderLinks read_folder_links(const Arguments& arguments, Progress& progress);

void print_folder_links(const FolderLinks& found);
void write_folder_links(const FolderLinks& found);

}  // namespace qto::cli
