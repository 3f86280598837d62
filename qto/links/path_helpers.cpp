#include "qto/links/path_helpers.hpp"

#include <algorithm>

#include "qto/automation/file_path.hpp"
#include "qto/diagnostics/procedure.hpp"

namespace qto::Main {
namespace {

bool is_letter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool is_scheme_char(char c) {
  return is_letter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

}  // namespace

bool IsURL(std::string_view text) {
  Procedure proc("Main", "IsURL");
  const std::size_t colon = text.find(':');
  // One letter before the colon is a drive.
  if (colon == std::string_view::npos || colon < 2 || !is_letter(text.front())) return false;
  return std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(colon),
                     is_scheme_char);
}

bool FileExists(std::string_view text) {
  Procedure proc("Main", "FileExists");
  if (IsURL(text)) return true;
  std::string path(text);
#ifndef _WIN32
  std::replace(path.begin(), path.end(), '\\', '/');
#endif
  std::error_code ignored;
  return !path.empty() && std::filesystem::exists(text::to_path(path), ignored);
}

std::string TrimSeparator(std::string_view text, bool local_file) {
  Procedure proc("Main", "TrimSeparator");
  if (!text.empty() && text.back() == (local_file ? '/' : '\\')) text.remove_suffix(1);
  return std::string(text);
}

std::string AddSeparator(std::string_view text, bool local_file) {
  Procedure proc("Main", "AddSeparator");
  const char separator = local_file ? '\\' : '/';
  std::string out(text);
  if (out.empty() || out.back() != separator) out.push_back(separator);
  return out;
}

}  // namespace qto::Main
