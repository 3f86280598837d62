#include "qto/hosts/embedded/objects/range_object.hpp"

#include <algorithm>

#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/name_object.hpp"

namespace qto::embedded {
namespace {

void append_external_prefix(std::string& out, const Book& book, const Sheet& sheet) {
  const std::string text = "[" + book.name + "]" + sheet.name;
  // Brackets alone do not ask for apostrophes.
  if (needs_quotes(book.name) || needs_quotes(sheet.name))
    append_sheet_name(out, text);
  else
    out.append(text);
  out.push_back('!');
}

}  // namespace

RangeObject::RangeObject(Ref<WorksheetObject> sheet, const Rect& block)
    : sheet_(std::move(sheet)), block_(block) {}

RangeObject::RangeObject(Ref<WorksheetObject> sheet, const std::vector<Rect>& blocks,
                         bool entire_rows)
    : sheet_(std::move(sheet)), block_(blocks.front()), entire_rows_(entire_rows) {
  if (blocks.size() > 1)
    more_ = std::make_unique<const std::vector<Rect>>(blocks.begin() + 1, blocks.end());
}

Ref<host::Application> RangeObject::application() const { return sheet_->Application(); }

Ref<host::Worksheet> RangeObject::Worksheet() const {
  sheet_->sheet();
  return sheet_;
}

int RangeObject::AreasCount() const noexcept {
  return more_ ? static_cast<int>(more_->size()) + 1 : 1;
}

std::int64_t RangeObject::CellsCount() const noexcept {
  std::int64_t count = block_.cells();
  if (more_)
    for (const Rect& block : *more_) count += block.cells();
  return count;
}

std::vector<Rect> RangeObject::blocks() const {
  std::vector<Rect> all{block_};
  if (more_) all.insert(all.end(), more_->begin(), more_->end());
  return all;
}

Ref<host::Range> RangeObject::at(const Rect& block) const {
  sheet_->sheet();
  return make_ref<RangeObject>(sheet_, block);
}

Ref<host::Range> RangeObject::Cells(std::int32_t row, std::int32_t column) const {
  // Far beyond the grid in either direction is as good as anywhere off it.
  const auto place = [](std::int32_t first, std::int32_t k) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(std::int64_t{first} + k - 1, 0, max_rows + 1));
  };
  return sheet_->Block(
      Rect::cell({place(block_.first.row, row), place(block_.first.column, column)}));
}

Ref<host::Range> RangeObject::Rows(std::int32_t k) const {
  if (k < 1 || k > block_.rows()) fail("The range has no row " + std::to_string(k));
  const std::int32_t row = block_.first.row + k - 1;
  return at({{row, block_.first.column}, {row, block_.last.column}});
}

Ref<host::Range> RangeObject::Columns(std::int32_t k) const {
  if (k < 1 || k > block_.columns()) fail("The range has no column " + std::to_string(k));
  const std::int32_t column = block_.first.column + k - 1;
  return at({{block_.first.row, column}, {block_.last.row, column}});
}

Ref<host::Range> RangeObject::EntireRow() const {
  sheet_->sheet();
  std::vector<Rect> rows = blocks();
  for (Rect& block : rows) {
    block.first.column = 1;
    block.last.column = max_columns;
  }
  return make_ref<RangeObject>(sheet_, rows, true);
}

Ref<host::Range> RangeObject::EntireColumn() const {
  sheet_->sheet();
  std::vector<Rect> columns = blocks();
  for (Rect& block : columns) {
    block.first.row = 1;
    block.last.row = max_rows;
  }
  return make_ref<RangeObject>(sheet_, columns);
}

Ref<host::DefinedName> RangeObject::find_name() const {
  const Sheet* sheet = sheet_->find_sheet();
  if (!sheet || more_) return nullptr;
  OpenBook& book = sheet_->open();
  const DefinedName* found = name_of_block(book, *sheet, block_);
  return found ? name_object(book, *found) : nullptr;
}

RangeObject& range_of(const Ref<host::Range>& range) {
  auto* object = dynamic_cast<RangeObject*>(range.get());
  if (!object) fail("A range of this application is needed");
  object->sheet()->sheet();
  return *object;
}

std::string RangeObject::Address(bool row_absolute, bool column_absolute, std::int32_t style,
                                 bool external) const {
  const OpenBook& book = sheet_->open();
  std::string out;
  if (external) append_external_prefix(out, book.book(), sheet_->sheet());
  const CellPos base = book.active_cell();
  const auto append = [&](const Rect& block) {
    if (style == host::xlR1C1)
      out.append(r1c1_of(block, row_absolute, column_absolute, base));
    else
      append_rect(out, block, row_absolute, column_absolute);
  };
  append(block_);
  if (more_)
    for (const Rect& block : *more_) {
      out.push_back(',');
      append(block);
    }
  return out;
}

std::string RangeObject::AddressLocal(bool row_absolute, bool column_absolute, std::int32_t style,
                                      bool external) const {
  return Address(row_absolute, column_absolute, style, external);
}

}  // namespace qto::embedded
