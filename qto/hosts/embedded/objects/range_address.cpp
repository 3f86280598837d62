#include "qto/hosts/embedded/objects/range_object.hpp"

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
