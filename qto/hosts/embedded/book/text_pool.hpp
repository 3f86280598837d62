#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/book/cell.hpp"

namespace qto::embedded {

/// The texts of a book, each stored once. A view stays valid as long as the pool lives.
class TextPool {
 public:
  TextPool();
  /// The number of the text, new or known.
  TextId intern(std::string_view text);
  std::string_view view(TextId id) const noexcept { return texts_[id]; }
  std::size_t size() const noexcept { return texts_.size(); }

 private:
  std::string_view keep(std::string_view text);
  void grow();

  std::vector<std::string_view> texts_;
  std::vector<TextId> slots_;  // open addressing, 0 = free: the empty text never needs a slot
  std::vector<std::unique_ptr<char[]>> chunks_;
  std::size_t chunk_left_ = 0;
  char* chunk_next_ = nullptr;
};

}  // namespace qto::embedded
