#include "qto/hosts/embedded/xlsx/part_readers.hpp"

#include "qto/hosts/embedded/xlsx/cell_reader.hpp"
#include "qto/hosts/embedded/xlsx/sheet_settings.hpp"
#include "qto/hosts/embedded/xlsx/xml_reader.hpp"

namespace qto::embedded {
namespace {

class SheetHandler final : public XmlHandler {
 public:
  SheetHandler(LoadContext& context, Sheet& sheet, SheetLinks& links)
      : has_cells_(sheet.kind == SheetKind::worksheet || sheet.kind == SheetKind::macro),
        cells_(context, sheet),
        settings_(sheet),
        links_(links) {}

  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    if (space != Space::main) return;
    if (in_data_)
      cells_.start(name, attributes);
    else if (name == "sheetData")
      in_data_ = has_cells_;
    else if (name == "tablePart")
      links_.tables.emplace_back(attributes.relationship());
    else if (name == "drawing")
      links_.drawing = attributes.relationship();
    else
      settings_.start(name, attributes);
  }

  void on_end(Space space, std::string_view name) override {
    if (!in_data_ || space != Space::main) return;
    if (name != "sheetData") return cells_.end(name);
    in_data_ = false;
    cells_.finish();
  }

  void on_text(std::string_view text) override {
    if (in_data_) cells_.text(text);
  }

 private:
  bool has_cells_;
  bool in_data_ = false;
  CellReader cells_;
  SheetSettings settings_;
  SheetLinks& links_;
};

}  // namespace

SheetLinks read_sheet(LoadContext& context, const Package::Part& part, Sheet& sheet) {
  SheetLinks links;
  SheetHandler handler(context, sheet, links);
  PartStream stream = context.package.open(part);
  read_xml(stream, handler);
  context.earlier_cells += sheet.cells.cell_count();
  context.earlier_blocks += sheet.cells.block_count();
  return links;
}

}  // namespace qto::embedded
