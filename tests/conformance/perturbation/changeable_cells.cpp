#include "tests/conformance/perturbation/changeable_cells.hpp"

#include <algorithm>

namespace qto::embedded::conformance {
namespace {

/// So many blank cells of a sheet are changed as well.
constexpr std::int64_t most_blanks = 4000;
/// So far beyond what is used blank cells are changed.
constexpr std::int32_t margin = 2;

std::uint64_t key_of(CellPos pos) noexcept {
  return static_cast<std::uint64_t>(pos.row) << 32 | static_cast<std::uint32_t>(pos.column);
}

bool same_value(const Cell& a, const Cell& b) noexcept {
  if (a.type() != b.type()) return false;
  switch (a.type()) {
    case CellType::empty:
      return true;
    case CellType::number:
      return a.number() == b.number();
    case CellType::text:
      return a.text() == b.text();
    case CellType::boolean:
      return a.boolean() == b.boolean();
    case CellType::error:
      return a.error() == b.error();
  }
  return false;
}

void set_number(Cell& cell, Chance& chance) {
  constexpr double numbers[] = {-3, -1, 0, 1, 2, 3, 4, 5, 6.5, 8, 10, 41};
  cell.set_number(chance.one_of(numbers));
}

void set_error(Cell& cell, Chance& chance) {
  constexpr ErrorValue errors[] = {ErrorValue::div0, ErrorValue::value, ErrorValue::ref,
                                   ErrorValue::name, ErrorValue::num,   ErrorValue::na};
  cell.set_error(chance.one_of(errors));
}

void set_text(Cell& cell, Book& book, Chance& chance) {
  constexpr const char* texts[] = {"", "a", "b", "c", "d", "zz", "7", "A3", "2026-05-01", "x y"};
  cell.set_text(book.texts.intern(chance.one_of(texts)));
}

void set_value(Cell& cell, Book& book, Change change, Chance& chance) {
  constexpr Change kinds[] = {Change::number, Change::number,  Change::error, Change::text,
                              Change::text,   Change::boolean, Change::blank};
  switch (change == Change::any ? chance.one_of(kinds) : change) {
    case Change::error:
      return set_error(cell, chance);
    case Change::text:
      return set_text(cell, book, chance);
    case Change::boolean:
      return cell.set_boolean(chance.happens(1, 2));
    case Change::blank:
      return cell.clear_value();
    default:
      return set_number(cell, chance);
  }
}

}  // namespace

ChangeableCells::ChangeableCells(const std::vector<Book*>& books, Chance& chance)
    : chance_(chance) {
  for (const Book* book : books)
    for (const auto& sheet : book->sheets()) {
      if (!sheet->is_worksheet()) continue;
      sheet->cells.for_each(Rect::sheet(), [&](CellPos pos, const Cell& cell, FormulaId) {
        add(*sheet, pos, cell, true);
      });
      add_blanks(*sheet);
    }
  drawn_ = original_;
}

ChangeableCells::~ChangeableCells() {
  for (Index cell = 0; cell < size(); ++cell) {
    const CellAddress& at = places_[cell];
    if (stored_[cell])
      restore(cell);
    else if (at.sheet->cells.find(at.pos))
      at.sheet->cells.erase(at.pos);
  }
}

void ChangeableCells::add(Sheet& sheet, CellPos pos, const Cell& cell, bool stored) {
  OfSheet& of = sheets_[&sheet];
  if (!of.index.emplace(key_of(pos), size()).second) return;
  if (of.index.size() == 1) of.bounds = Rect::cell(pos);
  of.bounds = {
      {std::min(of.bounds.first.row, pos.row), std::min(of.bounds.first.column, pos.column)},
      {std::max(of.bounds.last.row, pos.row), std::max(of.bounds.last.column, pos.column)}};
  places_.push_back({&sheet, pos});
  original_.push_back(cell);
  stored_.push_back(stored);
}

void ChangeableCells::add_blanks(Sheet& sheet) {
  Rect around = sheets_[&sheet].used = sheet.cells.used();
  around.last.row = std::min(around.last.row + margin, max_rows);
  around.last.column = std::min(around.last.column + margin, max_columns);
  around.first = {std::max(around.first.row - margin, 1),
                  std::max(around.first.column - margin, 1)};
  if (around.cells() <= most_blanks) return add_block_of_blanks(sheet, around);
  for (std::int64_t i = 0; i < most_blanks; ++i) {
    const CellPos pos{around.first.row + static_cast<int>(chance_.below(around.rows())),
                      around.first.column + static_cast<int>(chance_.below(around.columns()))};
    if (!sheet.cells.find(pos)) add(sheet, pos, {}, false);
  }
}

void ChangeableCells::add_block_of_blanks(Sheet& sheet, const Rect& block) {
  for (CellPos at = block.first; at.row <= block.last.row; ++at.row)
    for (at.column = block.first.column; at.column <= block.last.column; ++at.column)
      if (!sheet.cells.find(at)) add(sheet, at, {}, false);
}

std::optional<ChangeableCells::Index> ChangeableCells::find(const Sheet& sheet, CellPos pos) const {
  const auto of = sheets_.find(&sheet);
  if (of == sheets_.end()) return std::nullopt;
  const auto found = of->second.index.find(key_of(pos));
  if (found == of->second.index.end()) return std::nullopt;
  return found->second;
}

void ChangeableCells::find(const Sheet& sheet, const Rect& block, std::vector<Index>& found) const {
  const auto of = sheets_.find(&sheet);
  if (of == sheets_.end()) return;
  const std::optional<Rect> inside = block.intersect(of->second.bounds);
  if (!inside) return;
  if (inside->cells() > static_cast<std::int64_t>(of->second.index.size())) {
    for (const auto& [key, cell] : of->second.index)
      if (inside->contains(places_[cell].pos)) found.push_back(cell);
    return;
  }
  for (CellPos at = inside->first; at.row <= inside->last.row; ++at.row)
    for (at.column = inside->first.column; at.column <= inside->last.column; ++at.column)
      if (const auto cell = find(sheet, at)) found.push_back(*cell);
}

void ChangeableCells::find_unused(std::vector<Index>& found) const {
  for (Index cell = 0; cell < size(); ++cell)
    if (!sheets_.at(places_[cell].sheet).used.contains(places_[cell].pos)) found.push_back(cell);
}

void ChangeableCells::draw(Change change) {
  for (Index cell = 0; cell < size(); ++cell) draw(cell, change);
}

void ChangeableCells::draw(Index cell, Change change) {
  Cell& value = drawn_[cell];
  Book& book = places_[cell].sheet->book();
  set_value(value, book, change, chance_);
  while (same_value(value, original_[cell])) set_value(value, book, Change::any, chance_);
}

void ChangeableCells::change_all() {
  for (Index cell = 0; cell < size(); ++cell) change(cell);
}

void ChangeableCells::restore_all() {
  for (Index cell = 0; cell < size(); ++cell) restore(cell);
}

std::string ChangeableCells::name_of(Index cell) const {
  std::string out;
  append_sheet_name(out, places_[cell].sheet->name);
  return out + "!" + address_of(places_[cell].pos);
}

}  // namespace qto::embedded::conformance
