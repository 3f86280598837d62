#pragma once

#include <string>
#include <string_view>

/// Names as formulas write them: inside apostrophes an apostrophe is doubled.
namespace qto {

inline bool has_doubled_apostrophes(std::string_view name) noexcept {
  return name.find("''") != std::string_view::npos;
}

inline std::string undouble_apostrophes(std::string_view name) {
  std::string out;
  for (std::size_t i = 0; i < name.size(); ++i) {
    out.push_back(name[i]);
    if (name[i] == '\'' && i + 1 < name.size() && name[i + 1] == '\'') ++i;
  }
  return out;
}

/// Without one enclosing pair of apostrophes, doubled ones inside made single.
inline std::string without_apostrophes(std::string_view name) {
  if (name.size() < 2 || !name.starts_with('\'') || !name.ends_with('\'')) return std::string(name);
  return undouble_apostrophes(name.substr(1, name.size() - 2));
}

}  // namespace qto
