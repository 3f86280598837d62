#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace qto {

/// A text that costs one pointer while empty and one exact allocation otherwise: a drill keeps one
/// formula for each of a million parts.
class CompactText {
 public:
  std::string_view view() const noexcept {
    if (!bytes_) return {};
    std::uint32_t size;
    std::memcpy(&size, bytes_.get(), sizeof size);
    return {bytes_.get() + sizeof size, size};
  }
  void assign(std::string_view text) {
    if (text == view()) return;
    if (text.empty()) return bytes_.reset();
    const auto size = static_cast<std::uint32_t>(text.size());
    auto fresh = std::make_unique_for_overwrite<char[]>(sizeof size + text.size());
    std::memcpy(fresh.get(), &size, sizeof size);
    std::memcpy(fresh.get() + sizeof size, text.data(), text.size());
    bytes_ = std::move(fresh);
  }

 private:
  std::unique_ptr<char[]> bytes_;  // length, then the text
};

}  // namespace qto
