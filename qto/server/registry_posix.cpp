#include "qto/server/registry.hpp"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string_view>

namespace qto::server {
namespace {

namespace fs = std::filesystem;

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::optional<Registration> parse_line(const std::string& line) {
  const std::size_t first = line.find('\t');
  const std::size_t second = first == std::string::npos ? first : line.find('\t', first + 1);
  if (second == std::string::npos) return std::nullopt;
  const auto id = parse_guid(std::string_view(line).substr(first + 1, second - first - 1));
  if (!id) return std::nullopt;
  return Registration{line.substr(0, first), *id, line.substr(second + 1)};
}

bool write_registry(const fs::path& file, const std::vector<Registration>& entries) {
  std::error_code failed;
  fs::create_directories(file.parent_path(), failed);
  const fs::path fresh = file.string() + "." + std::to_string(getpid());
  {
    std::ofstream out(fresh);
    for (const Registration& entry : entries)
      out << entry.program_id << '\t' << guid_text(entry.class_id) << '\t' << entry.library << '\n';
    if (!out.flush()) return false;
  }
  fs::rename(fresh, file, failed);
  if (failed) fs::remove(fresh);
  return !failed;
}

}  // namespace

std::optional<fs::path> user_registry() {
  fs::path base(environment("XDG_DATA_HOME"));
  if (!base.is_absolute()) {
    const fs::path home(environment("HOME"));
    if (!home.is_absolute()) return std::nullopt;
    base = home / ".local/share";
  }
  return base / "qto/servers";
}

fs::path system_registry() {
  const std::string_view folders = environment("XDG_DATA_DIRS");
  const fs::path first(folders.substr(0, folders.find(':')));
  return (first.is_absolute() ? first : fs::path("/usr/local/share")) / "qto/servers";
}

std::vector<Registration> read_registry(const fs::path& file) {
  std::vector<Registration> entries;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);)
    if (auto entry = parse_line(line)) entries.push_back(std::move(*entry));
  return entries;
}

bool update_registry(const fs::path& file, const LibraryTable& library, const std::string& module) {
  auto entries = read_registry(file);
  for (const ClassTable* table : library.classes) {
    if (!table->create) continue;
    std::erase_if(entries, [&](const auto& entry) { return entry.class_id == table->class_id; });
    if (!module.empty())
      entries.push_back(
          {std::string(library.name) + "." + std::string(table->name), table->class_id, module});
  }
  std::error_code failed;
  if (entries.empty() && !fs::exists(file, failed)) return true;
  return write_registry(file, entries);
}

}  // namespace qto::server
