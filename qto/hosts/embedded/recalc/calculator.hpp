#pragma once

#include <vector>

#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/recalc/open_books.hpp"

namespace qto::embedded {

/// Brings books up to date. Books that are linked to each other are calculated as one.
class Calculator {
 public:
  explicit Calculator(const OpenBooks& open) : open_(open) {}

  /// True when the book, or an open book that it is linked with, waits for calculation.
  bool needs_calculation(Book& book) const;
  /// Calculates what depends on the changes of the book and of the open books that it is linked
  /// with, and whatever changes without them (NOW, INDIRECT); a cell that lies on a cycle gets 0.
  /// Formulas that cannot be parsed keep their values; so do those with functions nobody knows or
  /// references that lead nowhere, as long as none of their other sources changes. `now` is the
  /// moment of calculation, a serial number of the 1900 system.
  void calculate(Book& book, double now);

 private:
  /// The book and all that are linked with it, directly or not.
  std::vector<Book*> linked_with(Book& book) const;

  const OpenBooks& open_;
};

}  // namespace qto::embedded
