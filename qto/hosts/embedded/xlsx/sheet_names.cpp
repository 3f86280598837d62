#include "qto/hosts/embedded/xlsx/sheet_names.hpp"

#include "qto/automation/text.hpp"

namespace qto::embedded {

std::string SheetNames::unique(const std::string& name) {
  if (!name.empty() && taken_.insert(text::fold_case(name)).second) return name;
  int& number = numbered_[text::fold_case(name)];
  for (;;) {
    ++number;
    std::string candidate = name.empty() ? "Sheet" + std::to_string(number)
                                         : name + " (" + std::to_string(number + 1) + ")";
    if (taken_.insert(text::fold_case(candidate)).second) return candidate;
  }
}

}  // namespace qto::embedded
