#include "cli/asking/starts.hpp"

#include <fstream>
#include <iostream>

#include "cli/asking/complaint.hpp"
#include "qto/automation/file_path.hpp"
#include "qto/automation/text.hpp"

namespace qto::cli {
namespace {

void append_lines(std::istream& in, std::vector<std::string>& starts) {
  for (std::string line; std::getline(in, line);)
    if (const auto start = text::trim(line); !start.empty()) starts.emplace_back(start);
}

}  // namespace

std::vector<std::string> written_starts(const Arguments& arguments) {
  std::vector<std::string> starts = arguments.starts;
  const std::string& name = arguments.starts_file;
  if (name.empty()) return starts;
  if (name == "-") {
    append_lines(std::cin, starts);
  } else {
    std::ifstream file(text::to_path(name));
    if (!file) throw Complaint(wrong_usage, "--starts " + name + ": cannot be read");
    append_lines(file, starts);
  }
  if (starts.empty()) throw Complaint(wrong_usage, "--starts " + name + ": holds no START");
  return starts;
}

}  // namespace qto::cli
