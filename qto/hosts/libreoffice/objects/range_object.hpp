#pragma once

#include <vector>

#include "qto/host/range.hpp"
#include "qto/hosts/libreoffice/objects/worksheet_object.hpp"

namespace qto::libreoffice {

/// A block of cells, or several of one sheet. It is no more than its sheet's handle and the blocks.
class RangeObject final : public host::Range {
 public:
  RangeObject(Ref<WorksheetObject> sheet, const Rect& block)
      : sheet_(std::move(sheet)), block_(block) {}
  /// At least one block.
  RangeObject(Ref<WorksheetObject> sheet, const std::vector<Rect>& blocks, bool entire_rows = false)
      : sheet_(std::move(sheet)),
        block_(blocks.front()),
        more_(blocks.begin() + 1, blocks.end()),
        entire_rows_(entire_rows) {}

  Ref<host::HostObject> Parent() const override { return Worksheet(); }
  bool exists() const noexcept override { return sheet_->exists(); }
  Ref<host::Worksheet> Worksheet() const override;
  Rect block() const noexcept override { return block_; }
  int AreasCount() const noexcept override { return static_cast<int>(more_.size()) + 1; }
  std::int64_t CellsCount() const noexcept override;
  Ref<host::Range> Cells(std::int32_t row, std::int32_t column) const override;
  Ref<host::Range> Rows(std::int32_t k) const override;
  Ref<host::Range> Columns(std::int32_t k) const override;

  std::string Address(bool row_absolute, bool column_absolute, std::int32_t style,
                      bool external) const override;
  std::string AddressLocal(bool row_absolute, bool column_absolute, std::int32_t style,
                           bool external) const override;

  bool HasFormula() const override;
  std::string Formula() const override;
  std::string FormulaLocal() const override { return Formula(); }
  std::string FormulaR1C1Local() const override;
  Variant value() const override;
  std::string Text() const override;
  Ref<host::DefinedName> find_name() const override;
  Ref<host::Range> End(std::int32_t direction) const override;

  Ref<host::Range> EntireRow() const override;
  Ref<host::Range> EntireColumn() const override;
  std::optional<bool> Hidden() const override;
  void put_Hidden(bool hidden) override;
  void Select() override;

  void put_value(const Variant& value) override;
  void put_Formula(std::string_view formula) override;
  void put_FormulaArray(std::string_view formula) override;
  std::string NumberFormat() const override;
  void put_NumberFormat(std::string_view code) override;

  const Ref<WorksheetObject>& sheet() const noexcept { return sheet_; }
  /// All blocks, the first one included.
  std::vector<Rect> blocks() const;

 private:
  Ref<host::Application> application() const override { return sheet_->Application(); }
  Ref<host::Range> at(const Rect& block) const { return sheet_->Block(block); }
  /// Of entire lines: columns rather than rows.
  bool are_columns(const Rect& block) const noexcept {
    return block.whole_columns() && !entire_rows_;
  }
  /// The one cell of the range; throws for a block.
  CellPos the_cell() const;

  Ref<WorksheetObject> sheet_;
  Rect block_;
  std::vector<Rect> more_;
  bool entire_rows_ = false;  // made as entire rows: the whole sheet could be columns as well
};

/// The range behind an interface pointer; throws for null, another host's range or a dead one.
RangeObject& range_of(const Ref<host::Range>& range);

}  // namespace qto::libreoffice
