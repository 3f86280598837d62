#include "qto/hosts/embedded/book/text_pool.hpp"

#include <cstring>
#include <functional>

namespace qto::embedded {
namespace {
constexpr std::size_t chunk_size = 64 * 1024;
std::size_t hash_of(std::string_view text) noexcept { return std::hash<std::string_view>()(text); }
}  // namespace

TextPool::TextPool() : texts_(1), slots_(256) {}

TextId TextPool::intern(std::string_view text) {
  if (text.empty()) return 0;
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = hash_of(text) & mask;
  for (; slots_[slot] != 0; slot = (slot + 1) & mask)
    if (texts_[slots_[slot]] == text) return slots_[slot];
  const auto id = static_cast<TextId>(texts_.size());
  texts_.push_back(keep(text));
  slots_[slot] = id;
  if (texts_.size() * 4 > slots_.size() * 3) grow();
  return id;
}

std::string_view TextPool::keep(std::string_view text) {
  if (text.size() > chunk_left_) {
    const std::size_t size = std::max(chunk_size, text.size());
    chunks_.push_back(std::make_unique_for_overwrite<char[]>(size));
    chunk_next_ = chunks_.back().get();
    chunk_left_ = size;
  }
  std::memcpy(chunk_next_, text.data(), text.size());
  const std::string_view kept(chunk_next_, text.size());
  chunk_next_ += text.size();
  chunk_left_ -= text.size();
  return kept;
}

void TextPool::grow() {
  std::vector<TextId> wider(slots_.size() * 2);
  const std::size_t mask = wider.size() - 1;
  for (TextId id = 1; id < texts_.size(); ++id) {
    std::size_t slot = hash_of(texts_[id]) & mask;
    while (wider[slot] != 0) slot = (slot + 1) & mask;
    wider[slot] = id;
  }
  slots_ = std::move(wider);
}

}  // namespace qto::embedded
