#include "qto/hosts/embedded/xlsx/part_path.hpp"

#include <algorithm>
#include <vector>

namespace qto::embedded {
namespace {

int hex_digit(char c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool is_separator(char c) noexcept { return c == '/' || c == '\\'; }

/// Appends the segments of a path, resolving "." and "..".
void append_segments(std::vector<std::string_view>& segments, std::string_view path) {
  while (!path.empty()) {
    const auto end = std::find_if(path.begin(), path.end(), is_separator);
    const std::string_view segment = path.substr(0, static_cast<std::size_t>(end - path.begin()));
    path.remove_prefix(std::min(segment.size() + 1, path.size()));
    if (segment.empty() || segment == ".") continue;
    if (segment != "..")
      segments.push_back(segment);
    else if (!segments.empty())
      segments.pop_back();
  }
}

}  // namespace

std::string percent_decoded(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int high = text[i] == '%' && i + 2 < text.size() ? hex_digit(text[i + 1]) : -1;
    const int low = high >= 0 ? hex_digit(text[i + 2]) : -1;
    if (low < 0) {
      decoded.push_back(text[i]);
      continue;
    }
    decoded.push_back(static_cast<char>(high * 16 + low));
    i += 2;
  }
  return decoded;
}

std::string part_key(std::string_view name) {
  while (!name.empty() && is_separator(name.front())) name.remove_prefix(1);
  std::string key = percent_decoded(name);
  for (char& c : key) {
    if (c == '\\') c = '/';
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return key;
}

std::string resolve_part(std::string_view owner, std::string_view target) {
  std::vector<std::string_view> segments;
  if (target.empty() || !is_separator(target.front())) {
    append_segments(segments, owner);
    if (!segments.empty()) segments.pop_back();
  }
  append_segments(segments, target);
  std::string path;
  for (const std::string_view segment : segments) {
    if (!path.empty()) path.push_back('/');
    path.append(segment);
  }
  return path;
}

std::string relationships_part_of(std::string_view part) {
  const std::size_t slash = part.find_last_of('/');
  const std::size_t name = slash == std::string_view::npos ? 0 : slash + 1;
  std::string path(part.substr(0, name));
  return path.append("_rels/").append(part.substr(name)).append(".rels");
}

}  // namespace qto::embedded
