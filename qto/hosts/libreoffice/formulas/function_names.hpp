#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace qto::libreoffice {

/// The functions' names: those of the suite's own formula texts, those of .xlsx files, and those
/// that formulas show (the files' without _xlfn. and the like).
class FunctionNames {
 public:
  /// Both names are those of one function.
  void add(std::string_view office, std::string_view file);

  /// What formulas show for a name of the suite; itself when there is nothing else.
  std::string_view shown(std::string_view office) const;
  /// What files write for a name that formulas show; itself when there is nothing else.
  std::string_view stored(std::string_view shown) const;

 private:
  std::unordered_map<std::string, std::string> shown_;
  std::unordered_map<std::string, std::string> stored_;
};

}  // namespace qto::libreoffice
