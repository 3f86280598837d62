#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>

namespace qto::embedded {

/// Makes the sheet names of a file usable: none is empty, no two are the same but for letter case.
class SheetNames {
 public:
  std::string unique(const std::string& name);

 private:
  std::unordered_set<std::string> taken_;
  std::unordered_map<std::string, int> numbered_;  ///< the last number tried, by wanted name
};

}  // namespace qto::embedded
