#include "qto/hosts/embedded/recalc/calculator.hpp"

#include <algorithm>

#include "qto/hosts/embedded/recalc/calculation.hpp"
#include "qto/hosts/embedded/recalc/data_tables.hpp"

namespace qto::embedded {
namespace {

bool refers_to(const Book& book, const Book& other, const OpenBooks& open) {
  return std::any_of(book.externals.begin(), book.externals.end(), [&](const ExternalBook& link) {
    return link.kind == ExternalBook::Kind::workbook && open.find(link.name) == &other;
  });
}

}  // namespace

std::vector<Book*> Calculator::linked_with(Book& book) const {
  std::vector<Book*> linked{&book};
  std::vector<Book*> others = open_.all();
  std::erase(others, &book);
  for (std::size_t i = 0; i < linked.size(); ++i) {
    const auto found = std::stable_partition(others.begin(), others.end(), [&](Book* other) {
      return !refers_to(*linked[i], *other, open_) && !refers_to(*other, *linked[i], open_);
    });
    linked.insert(linked.end(), found, others.end());
    others.erase(found, others.end());
  }
  return linked;
}

bool Calculator::needs_calculation(Book& book) const {
  if (book.needs_calculation()) return true;
  const std::vector<Book*> all = open_.all();
  const auto waits = [](const Book* other) { return other->needs_calculation(); };
  if (std::none_of(all.begin(), all.end(), waits)) return false;
  const std::vector<Book*> linked = linked_with(book);
  return std::any_of(linked.begin(), linked.end(), waits);
}

void Calculator::calculate(Book& book, double now) {
  const std::vector<Book*> books = linked_with(book);
  DataTables tables(books, open_, now);
  tables.note_pending();
  Calculation(books, open_, now).run();
  for (Book* done : books) done->calculation_done();
  tables.calculate();
}

}  // namespace qto::embedded
