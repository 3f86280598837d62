#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qto/automation/text.hpp"

namespace qto {

/// A collection key that is a text compared without regard to letter case.
class FoldedKey {
 public:
  explicit FoldedKey(std::string_view text) : folded_(text::fold_case(text)) {}
  std::uint64_t hash() const noexcept { return text::hash_fold(folded_) * 0x9e3779b97f4a7c15u; }
  bool operator==(const FoldedKey&) const = default;

 private:
  std::string folded_;
};

}  // namespace qto
