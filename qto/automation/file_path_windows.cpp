#include "qto/automation/file_path.hpp"
#include "qto/automation/wide_text_windows.hpp"

namespace qto::text {

std::filesystem::path to_path(std::string_view text) { return {to_wide(text)}; }

std::string from_path(const std::filesystem::path& path) { return from_wide(path.native()); }

std::FILE* open_file(const std::string& path, const char* mode) {
  return _wfopen(to_wide(path).c_str(), to_wide(mode).c_str());
}

}  // namespace qto::text
