#pragma once

#include <string_view>
#include <vector>

namespace qto::embedded {

class Book;

/// The books that are open together, as the application knows them.
class OpenBooks {
 public:
  virtual ~OpenBooks() = default;
  /// By file name without folder, letter case ignored; null when it is not open.
  virtual Book* find(std::string_view name) const = 0;
  virtual std::vector<Book*> all() const = 0;
};

}  // namespace qto::embedded
