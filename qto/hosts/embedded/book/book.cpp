#include "qto/hosts/embedded/book/book.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"

namespace qto::embedded {

Sheet& Book::add_sheet(std::string sheet_name, SheetKind kind) {
  const std::string key = text::fold_case(sheet_name);
  sheets_.push_back(std::make_unique<Sheet>(*this, std::move(sheet_name), kind));
  sheet_by_name_[key] = sheets_.back().get();
  return *sheets_.back();
}

void Book::remove_sheet(Sheet& sheet) {
  names.remove_sheet(&sheet);
  std::erase_if(tables_, [&](const auto& table) {
    if (table->sheet != &sheet) return false;
    table_by_name_.erase(text::fold_case(table->name));
    return true;
  });
  std::erase_if(pending_, [&](const CellAddress& cell) { return cell.sheet == &sheet; });
  sheet_by_name_.erase(text::fold_case(sheet.name));
  std::erase_if(sheets_, [&](const auto& entry) { return entry.get() == &sheet; });
  everything_changed();
}

void Book::rename_sheet(Sheet& sheet, std::string new_name) {
  sheet_by_name_.erase(text::fold_case(sheet.name));
  sheet.name = std::move(new_name);
  sheet_by_name_[text::fold_case(sheet.name)] = &sheet;
  everything_changed();
}

Sheet* Book::find_sheet(std::string_view sheet_name) const {
  const auto found = sheet_by_name_.find(text::fold_case(sheet_name));
  return found == sheet_by_name_.end() ? nullptr : found->second;
}

int Book::index_of(const Sheet& sheet) const noexcept {
  const auto found = std::find_if(sheets_.begin(), sheets_.end(),
                                  [&](const auto& entry) { return entry.get() == &sheet; });
  return static_cast<int>(found - sheets_.begin());
}

Table& Book::add_table(Table table) {
  tables_.push_back(std::make_unique<Table>(std::move(table)));
  table_by_name_[text::fold_case(tables_.back()->name)] = tables_.back().get();
  return *tables_.back();
}

const Table* Book::find_table(std::string_view table_name) const {
  if (tables_.empty()) return nullptr;
  const auto found = table_by_name_.find(text::fold_case(table_name));
  return found == table_by_name_.end() ? nullptr : found->second;
}

const Table* Book::table_at(const Sheet& sheet, CellPos pos) const noexcept {
  for (const auto& table : tables_)
    if (table->sheet == &sheet && table->range.contains(pos)) return table.get();
  return nullptr;
}

FormulaId Book::add_formula(FormulaRecord record) {
  formulas_.push_back(std::move(record));
  return static_cast<FormulaId>(formulas_.size() - 1);
}

void Book::cell_changed(const CellAddress& cell) {
  ++serial_;
  if (!all_pending_) pending_.push_back(cell);
}

void Book::everything_changed() {
  ++serial_;
  all_pending_ = true;
  pending_.clear();
}

void Book::calculation_done() noexcept {
  all_pending_ = false;
  pending_.clear();
}

Variant Book::value_of(const Cell& cell) const {
  switch (cell.type()) {
    case CellType::empty:
      return {};
    case CellType::number:
      if (cell.style() != 0 && styles.at(cell.style()).format->is_date())
        return Date{cell.number() + date_shift()};
      return cell.number();
    case CellType::text:
      return texts.view(cell.text());
    case CellType::boolean:
      return cell.boolean();
    case CellType::error:
      return cell.error();
  }
  return {};
}

void Book::store(Cell& cell, const Variant& value) {
  if (const auto* number = value.get_if<double>()) return cell.set_number(*number);
  if (const auto* whole = value.get_if<std::int32_t>()) return cell.set_number(*whole);
  if (const auto* date = value.get_if<Date>()) return cell.set_number(date->serial - date_shift());
  if (const auto* flag = value.get_if<bool>()) return cell.set_boolean(*flag);
  if (const auto* error = value.get_if<ErrorValue>()) return cell.set_error(*error);
  if (value.is_text()) return cell.set_text(texts.intern(value.text()));
  cell.clear_value();
}

}  // namespace qto::embedded
