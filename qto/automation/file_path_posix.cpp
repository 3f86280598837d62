#include "qto/automation/file_path.hpp"

namespace qto::text {

std::filesystem::path to_path(std::string_view text) { return {text}; }

std::string from_path(const std::filesystem::path& path) { return path.string(); }

std::FILE* open_file(const std::string& path, const char* mode) {
  return std::fopen(path.c_str(), mode);
}

}  // namespace qto::text
