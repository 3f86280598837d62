#include "qto/hosts/libreoffice/objects/range_object.hpp"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include <com/sun/star/util/XNumberFormatsSupplier.hpp>

#include "qto/formula/formula_pieces.hpp"
#include "qto/formula/reference_text.hpp"
#include "qto/hosts/libreoffice/objects/name_object.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

namespace beans = com::sun::star::beans;

void append_external_prefix(std::string& out, const std::string& book, const std::string& sheet) {
  append_link(out, LinkTarget{"", book}, sheet);
}

/// The formula with its references in R1C1 notation, seen from the cell.
std::string r1c1_formula(const std::string& formula, CellPos at) {
  if (!formula.starts_with('=')) return formula;
  const std::string_view body = std::string_view(formula).substr(1);
  const formula::FormulaPieces cut = formula::cut_formula(body, at);
  std::string out = "=";
  for (const formula::Piece& piece : cut.pieces) {
    if (piece.kind == formula::PieceKind::area)
      formula::append_area_r1c1(out, cut.areas[piece.item], at);
    else
      out.append(cut.literal(piece));
  }
  return out;
}

}  // namespace

Ref<host::Worksheet> RangeObject::Worksheet() const {
  sheet_->slot();
  return Ref<host::Worksheet>(sheet_.get());
}

std::int64_t RangeObject::CellsCount() const noexcept {
  std::int64_t count = block_.cells();
  for (const Rect& block : more_) count += block.cells();
  return count;
}

std::vector<Rect> RangeObject::blocks() const {
  std::vector<Rect> all{block_};
  all.insert(all.end(), more_.begin(), more_.end());
  return all;
}

Ref<host::Range> RangeObject::Cells(std::int32_t row, std::int32_t column) const {
  // Far beyond the grid in either direction is as good as anywhere off it.
  const auto place = [](std::int32_t first, std::int32_t k) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(std::int64_t{first} + k - 1, 0, max_rows + 1));
  };
  return at(Rect::cell({place(block_.first.row, row), place(block_.first.column, column)}));
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

std::string RangeObject::Address(bool row_absolute, bool column_absolute, std::int32_t style,
                                 bool external) const {
  std::string out;
  if (external) append_external_prefix(out, sheet_->document().name(), sheet_->slot().name);
  const CellPos base = sheet_->owner().active_cell();
  bool first = true;
  for (const Rect& block : blocks()) {
    if (!std::exchange(first, false)) out.push_back(',');
    if (style == host::xlR1C1)
      out.append(r1c1_of(block, row_absolute, column_absolute, base));
    else
      append_rect(out, block, row_absolute, column_absolute);
  }
  return out;
}

std::string RangeObject::AddressLocal(bool row_absolute, bool column_absolute, std::int32_t style,
                                      bool external) const {
  return Address(row_absolute, column_absolute, style, external);
}

CellPos RangeObject::the_cell() const {
  if (!block_.is_cell() || !more_.empty())
    fail("Of one cell only, not of " + Address(false, false, host::xlA1, false));
  return block_.first;
}

bool RangeObject::HasFormula() const {
  std::int64_t formulas = 0;
  for (const Rect& block : blocks())
    sheet_->slot().cells().for_each(block, [&](CellPos, const CellRecord& record) {
      formulas += record.formula.isEmpty() ? 0 : 1;
    });
  return formulas == CellsCount();
}

std::string RangeObject::Formula() const {
  std::string out;
  sheet_->append_cell_formula(the_cell(), out);
  return out;
}

std::string RangeObject::FormulaR1C1Local() const { return r1c1_formula(Formula(), the_cell()); }

Variant RangeObject::value() const {
  if (block_.is_cell()) return sheet_->cell_value(block_.first);
  constexpr std::int64_t most_values = std::int64_t{1} << 26;
  if (block_.cells() > most_values) fail("The block has too many cells to read at once");
  SheetSlot& slot = sheet_->slot();
  const auto values = make_ref<VariantArray>(block_.rows(), block_.columns());
  slot.cells().for_each(block_, [&](CellPos pos, const CellRecord&) {
    values->at(pos.row - block_.first.row + 1, pos.column - block_.first.column + 1) =
        sheet_->document().value(slot, pos);
  });
  return Variant(Ref<const VariantArray>(values));
}

std::string RangeObject::Text() const {
  SheetSlot& slot = sheet_->slot();
  if (!block_.is_cell() || !more_.empty() || !slot.cells().find(block_.first)) return {};
  return guarded("Reading a cell's text", [&] {
    return utf8(uno::Reference<com::sun::star::text::XTextRange>(
                    slot.sheet->getCellByPosition(block_.first.column - 1, block_.first.row - 1),
                    uno::UNO_QUERY_THROW)
                    ->getString());
  });
}

Ref<host::DefinedName> RangeObject::find_name() const {
  if (!exists() || !more_.empty()) return nullptr;
  const NameEntry* entry = sheet_->document().names().of_block(sheet_->slot(), block_);
  return entry ? name_object(sheet_->owner(), sheet_->workbook()->book(), *entry) : nullptr;
}

std::string RangeObject::NumberFormat() const {
  const SheetSlot& slot = sheet_->slot();
  return guarded("Reading a number format", [&] {
    std::int32_t key = 0;
    uno::Reference<beans::XPropertySet>(
        slot.sheet->getCellByPosition(block_.first.column - 1, block_.first.row - 1),
        uno::UNO_QUERY_THROW)
        ->getPropertyValue("NumberFormat") >>= key;
    OUString code;
    uno::Reference<com::sun::star::util::XNumberFormatsSupplier>(sheet_->document().model(),
                                                                 uno::UNO_QUERY_THROW)
        ->getNumberFormats()
        ->getByKey(key)
        ->getPropertyValue("FormatString") >>= code;
    return utf8(code);
  });
}

RangeObject& range_of(const Ref<host::Range>& range) {
  auto* object = dynamic_cast<RangeObject*>(range.get());
  if (!object) fail("A range of this application is needed");
  object->sheet()->slot();
  return *object;
}

}  // namespace qto::libreoffice
