#include "qto/hosts/embedded/objects/links.hpp"

#include <algorithm>
#include <vector>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/objects/checks/full_name.hpp"
#include "qto/hosts/embedded/objects/locate_file.hpp"

namespace qto::embedded {
namespace {

/// The links of a book to one other book, by their numbers in formulas.
class LinksTo {
 public:
  LinksTo(const Book& book, std::string_view name) : name_(name) {
    std::uint32_t number = 0;
    for (const ExternalBook& link : book.externals) {
      ++number;
      if (link.kind == ExternalBook::Kind::workbook && text::equal_fold(link.name, name))
        numbers_.push_back(number);
    }
  }

  bool used_by(const CompiledFormula& formula) const {
    const formula::SyntaxTree* tree = formula.tree();
    return tree &&
           std::any_of(tree->qualifiers.begin(), tree->qualifiers.end(),
                       [this](const formula::SheetQualifier& qualifier) { return is(qualifier); });
  }

 private:
  bool is(const formula::SheetQualifier& qualifier) const {
    if (!qualifier.book.empty()) return text::equal_fold(qualifier.book, name_);
    return std::find(numbers_.begin(), numbers_.end(), qualifier.external) != numbers_.end();
  }

  std::string_view name_;
  std::vector<std::uint32_t> numbers_;
};

std::vector<CellAddress> cells_that_use(const Book& book, const LinksTo& links) {
  std::vector<bool> uses(book.formula_records() + 1);
  for (FormulaId id = 1; id < uses.size(); ++id)
    uses[id] = links.used_by(*book.formula(id).compiled);
  std::vector<CellAddress> cells;
  for (const auto& sheet : book.sheets())
    sheet->cells.for_each(Rect::sheet(), [&](CellPos pos, const Cell&, FormulaId id) {
      if (uses[id]) cells.push_back({sheet.get(), pos});
    });
  return cells;
}

void remember_sheet(const Book& linked, const Sheet& sheet,
                    std::unordered_map<std::uint64_t, Variant>& values) {
  // Of large sheets only what was remembered before is kept up to date.
  constexpr std::int64_t most_cells = 100'000;
  if (sheet.cells.cell_count() <= most_cells) {
    values.clear();
    sheet.cells.for_each(Rect::sheet(), [&](CellPos pos, const Cell& cell, FormulaId) {
      if (!cell.is_empty()) values[ExternalBook::key(pos)] = linked.value_of(cell);
    });
    return;
  }
  for (auto& [key, value] : values) {
    const CellPos pos{static_cast<std::int32_t>(key >> 14),
                      static_cast<std::int32_t>(key & 0x3FFF) + 1};
    const Cell* cell = sheet.cells.find(pos);
    value = cell ? linked.value_of(*cell) : Variant();
  }
}

bool look_in(const std::string& folder, Book& book, std::size_t number, StoredNames& stored) {
  if (folder.empty()) return false;
  ExternalBook& link = book.externals[number];
  const auto found = file_in_folder(folder, link.name);
  if (!found) return false;
  std::string before = stored_name(book, number, stored);
  if (stored.size() <= number) stored.resize(number + 1);
  stored[number] = std::move(before);
  link.folder = join_path(folder, "");
  link.name = *found;
  return true;
}

}  // namespace

void links_changed(Book& book, std::string_view linked_name) {
  const LinksTo links(book, linked_name);
  const bool named = std::any_of(
      book.names.all().begin(), book.names.all().end(),
      [&](const auto& name) { return name->refers_to && links.used_by(*name->refers_to); });
  if (named) return book.everything_changed();
  for (const CellAddress& cell : cells_that_use(book, links)) book.cell_changed(cell);
}

void remember_values(Book& book, const Book& linked) {
  for (ExternalBook& link : book.externals) {
    if (link.kind != ExternalBook::Kind::workbook || !text::equal_fold(link.name, linked.name))
      continue;
    link.values.resize(link.sheets.size());
    for (std::size_t i = 0; i < link.sheets.size(); ++i)
      if (const Sheet* sheet = linked.find_sheet(link.sheets[i]))
        remember_sheet(linked, *sheet, link.values[i]);
  }
}

std::string stored_name(const Book& book, std::size_t number, const StoredNames& stored) {
  if (number < stored.size() && !stored[number].empty()) return stored[number];
  const ExternalBook& link = book.externals[number];
  return join_path(link.folder.empty() ? book.path : link.folder, link.name);
}

void resolve_link(Book& book, std::size_t number, const std::vector<std::string>& folders,
                  StoredNames& stored) {
  const ExternalBook& link = book.externals[number];
  if (link.kind != ExternalBook::Kind::workbook || link.name.empty()) return;
  if (is_internet_address(link.folder)) return;
  if (!link.folder.empty() && is_file_here(link.folder + link.name)) return;
  if (look_in(book.path, book, number, stored)) return;
  for (const std::string& folder : folders)
    if (look_in(folder, book, number, stored)) return;
}

void resolve_links(Book& book, const std::vector<std::string>& folders, StoredNames& stored) {
  for (std::size_t number = 0; number < book.externals.size(); ++number)
    resolve_link(book, number, folders, stored);
}

}  // namespace qto::embedded
