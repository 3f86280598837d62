#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// Linked books that are not open, as books made of the values that a file remembers of them. They
/// hold no formulas, so everything that reads cells reads them without knowing.
class ClosedBooks {
 public:
  /// The stand-in for `owner.externals[index]`; made when first asked for and again when the owner
  /// has changed since.
  Book& stand_in(const Book& owner, std::uint32_t index);
  bool contains(const Book& book) const noexcept;
  /// Drops the stand-ins of books that changed. Nothing may refer to a stand-in when this is
  /// called.
  void begin(const Book& owner);

 private:
  struct Entry {
    const Book* owner;
    std::uint64_t serial;
    std::uint32_t index;
    std::unique_ptr<Book> book;
  };
  std::vector<Entry> entries_;
};

}  // namespace qto::embedded
