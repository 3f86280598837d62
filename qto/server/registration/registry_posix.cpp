#include "qto/server/registration/registry_posix.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <utility>

#include "qto/server/registration/registration.hpp"

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

/// A file or folder that is open; a failure to open it leaves its reason in errno.
class Descriptor {
 public:
  explicit Descriptor(int opened) : opened_(opened) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(); }
  int get() const noexcept { return opened_; }
  /// False when what was written did not reach the file.
  bool close() noexcept {
    const int closing = std::exchange(opened_, -1);
    return closing < 0 || ::close(closing) == 0;
  }

 private:
  int opened_;
};

bool write_all(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(file, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::string registry_text(const std::vector<Registration>& entries) {
  std::string text;
  for (const Registration& entry : entries)
    text += entry.program_id + '\t' + guid_text(entry.class_id) + '\t' + entry.library + '\n';
  return text;
}

/// Puts a new file in the place of the old one, whole or not at all. 0, or the system's number of
/// the failure.
int replace_file(const fs::path& file, std::string_view text) {
  std::string fresh = file.string() + ".XXXXXX";
  Descriptor out(mkostemp(fresh.data(), O_CLOEXEC));
  if (out.get() < 0) return errno;
  constexpr mode_t readable_by_all = 0644;
  if (write_all(out.get(), text) && fchmod(out.get(), readable_by_all) == 0 &&
      fsync(out.get()) == 0 && out.close() && std::rename(fresh.c_str(), file.c_str()) == 0)
    return 0;
  const int failed = errno;
  ::unlink(fresh.c_str());
  return failed;
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

int update_registry(const fs::path& file, const LibraryTable& library, const std::string& module) {
  std::error_code failed;
  fs::create_directories(file.parent_path(), failed);
  if (failed) return failed.value();
  // Whoever else changes the registry waits until the file has been replaced.
  const Descriptor folder(::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.get() < 0 || ::flock(folder.get(), LOCK_EX) != 0) return errno;
  auto entries = read_registry(file);
  for (const ClassTable* table : library.classes) {
    if (!table->create) continue;
    std::erase_if(entries, [&](const auto& entry) { return entry.class_id == table->class_id; });
    if (!module.empty())
      entries.push_back(
          {std::string(library.name) + "." + std::string(table->name), table->class_id, module});
  }
  if (entries.empty() && !fs::exists(file, failed)) return 0;
  return replace_file(file, registry_text(entries));
}

namespace {

/// The results that clients know for a system's failure to write.
Result result_of(int failed) {
  switch (failed) {
    case 0:
      return ok;
    case EACCES:
    case EPERM:
    case EROFS:
      return access_denied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return disk_full;
    default:
      return registration_failed;
  }
}

/// Registration goes to the user's file; QTO_REGISTER=system asks for the system's.
Result change_registry(const LibraryTable& library, const std::string& path) {
  const char* scope = std::getenv("QTO_REGISTER");
  const auto file =
      scope && std::string_view(scope) == "system" ? system_registry() : user_registry();
  return file ? result_of(update_registry(*file, library, path)) : registration_failed;
}

}  // namespace

Result register_library(const LibraryTable& library, const std::string& path) {
  return change_registry(library, path);
}

Result unregister_library(const LibraryTable& library) { return change_registry(library, ""); }

}  // namespace qto::server
