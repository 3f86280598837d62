#include "qto/hosts/embedded/evaluate/closed_books.hpp"

#include <algorithm>

#include "qto/hosts/embedded/formulas/compiled_formula.hpp"

namespace qto::embedded {

namespace {

void fill(Book& book, Sheet& sheet, const std::unordered_map<std::uint64_t, Variant>& values) {
  for (const auto& [key, value] : values) {
    const CellPos pos{static_cast<std::int32_t>(key >> 14),
                      static_cast<std::int32_t>(key & (max_columns - 1)) + 1};
    if (pos.on_grid()) book.store(sheet.cells.touch(pos), value);
  }
}

std::unique_ptr<Book> build(const ExternalBook& source) {
  auto book = std::make_unique<Book>();
  book->name = source.name;
  book->path = source.folder;
  for (std::size_t i = 0; i < source.sheets.size(); ++i) {
    if (book->find_sheet(source.sheets[i])) continue;
    if (i < source.lost.size() && source.lost[i]) continue;
    Sheet& sheet = book->add_sheet(source.sheets[i]);
    if (i < source.values.size()) fill(*book, sheet, source.values[i]);
  }
  for (const ExternalBook::Name& name : source.names) {
    std::string_view text = name.refers_to;
    if (text.starts_with('=')) text.remove_prefix(1);
    book->names.add({name.name, name.sheet.empty() ? nullptr : book->find_sheet(name.sheet), false,
                     CompiledFormula::compile(text, CellPos{})});
  }
  return book;
}

}  // namespace

Book& ClosedBooks::stand_in(const Book& owner, std::uint32_t index) {
  for (const Entry& entry : entries_)
    if (entry.owner == &owner && entry.index == index) return *entry.book;
  entries_.push_back({&owner, owner.serial(), index, build(owner.externals[index])});
  return *entries_.back().book;
}

bool ClosedBooks::contains(const Book& book) const noexcept {
  return std::ranges::any_of(entries_,
                             [&](const Entry& entry) { return entry.book.get() == &book; });
}

void ClosedBooks::begin(const Book& owner) {
  std::erase_if(entries_, [&](const Entry& entry) {
    return entry.owner == &owner && entry.serial != owner.serial();
  });
}

}  // namespace qto::embedded
