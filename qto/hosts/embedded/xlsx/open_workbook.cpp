#include "qto/hosts/embedded/xlsx/open_workbook.hpp"

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "qto/automation/file_path.hpp"
#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/xlsx/file_kind.hpp"
#include "qto/hosts/embedded/xlsx/load_context.hpp"
#include "qto/hosts/embedded/xlsx/part_readers.hpp"
#include "qto/hosts/embedded/xlsx/pivot_part.hpp"
#include "qto/hosts/embedded/xlsx/relationships.hpp"
#include "qto/hosts/embedded/xlsx/workbook_part.hpp"

namespace qto::embedded {
namespace {

SheetKind kind_of(const Relationship* link) noexcept {
  if (!link) return SheetKind::worksheet;
  if (link->type == "chartsheet") return SheetKind::chart;
  if (link->type == "dialogsheet") return SheetKind::dialog;
  if (link->type == "xlMacrosheet" || link->type == "xlIntlMacrosheet") return SheetKind::macro;
  return SheetKind::worksheet;
}

std::string folder_of(const std::string& file) {
  const auto full = std::filesystem::absolute(text::to_path(file)).lexically_normal();
  return text::from_path(full.parent_path());
}

/// Reads one workbook, part by part.
class WorkbookReader {
 public:
  WorkbookReader(const std::string& file, const OpenOptions& options);
  std::unique_ptr<Book> read();

 private:
  void find_workbook_part();
  void make_sheets();
  void read_names();
  void read_style_part();
  void read_string_part();
  void read_sheet_parts();
  void read_sheet_part(Sheet& sheet, const Package::Part& part);
  std::size_t active_sheet() const;
  /// The part of a sheet; null for the sheets of macro modules, which have none.
  const Package::Part* part_of_sheet(std::size_t position) const;
  void read_externals();
  void attach_tables(Sheet& sheet, const Relationships& links, const SheetLinks& wanted,
                     const std::string& part);
  void attach_pivots(Sheet& sheet, const Relationships& links);
  void attach_charts(Sheet& sheet, const Relationships& links, const SheetLinks& wanted);
  void settle_calculation();

  const OpenOptions& options_;
  Package package_;
  std::unique_ptr<Book> book_;
  LoadContext context_;
  const Package::Part* workbook_part_ = nullptr;
  WorkbookPart workbook_;
  Relationships links_;
  PivotReader pivots_;
};

WorkbookReader::WorkbookReader(const std::string& file, const OpenOptions& options)
    : options_(options),
      package_(file, options.password),
      book_(std::make_unique<Book>()),
      context_{package_, *book_, options.cell_memory, FormulaIntern(*book_), {}, {}, 0},
      pivots_(package_, folder_of(file)) {
  book_->name = text::from_path(text::to_path(file).filename());
  book_->path = folder_of(file);
}

std::unique_ptr<Book> WorkbookReader::read() {
  package_.set_progress(options_.progress, options_.progress_data);
  find_workbook_part();
  workbook_ = read_workbook_part(package_, *workbook_part_);
  links_ = Relationships(package_, workbook_part_->name);
  book_->date1904 = workbook_.date1904;
  book_->iteration = workbook_.iteration;
  book_->structure = workbook_.structure;
  book_->active_sheet = active_sheet();
  make_sheets();
  read_externals();
  if (options_.links_only) return std::move(book_);
  read_style_part();
  read_string_part();
  read_names();
  read_sheet_parts();
  settle_calculation();
  return std::move(book_);
}

void WorkbookReader::find_workbook_part() {
  const Relationships package_links(package_, "");
  for (const Relationship& link : package_links.all()) {
    if (link.type != "officeDocument") continue;
    workbook_part_ = package_.find(link.part);
    if (workbook_part_) break;
  }
  if (!workbook_part_) workbook_part_ = package_.find("xl/workbook.xml");
  if (!workbook_part_ || package_.find("xl/workbook.bin")) refuse_package(package_);
}

void WorkbookReader::make_sheets() {
  SheetNames names;
  for (const WorkbookPart::SheetEntry& entry : workbook_.sheets) {
    const SheetKind kind = kind_of(links_.by_id(entry.relationship));
    book_->add_sheet(names.unique(entry.name), kind).visibility = entry.visibility;
  }
}

std::size_t WorkbookReader::active_sheet() const {
  const auto active = static_cast<std::uint64_t>(workbook_.active_sheet);
  return active < workbook_.sheets.size() ? active : 0;
}

void WorkbookReader::read_names() {
  const auto sheet_count = static_cast<std::int64_t>(book_->sheets().size());
  for (const WorkbookPart::NameEntry& entry : workbook_.names) {
    if (entry.name.empty()) continue;
    DefinedName name;
    // Names that applications keep for themselves are known without the mark of the file format.
    constexpr std::string_view mark = "_xlnm.";
    name.name = entry.name.starts_with(mark) ? entry.name.substr(mark.size()) : entry.name;
    if (entry.sheet) {
      if (*entry.sheet < 0 || *entry.sheet >= sheet_count) continue;
      name.sheet = book_->sheets()[static_cast<std::size_t>(*entry.sheet)].get();
    }
    name.hidden = entry.hidden;
    name.refers_to = CompiledFormula::compile(entry.refers_to, CellPos{});
    book_->names.add(std::move(name));
  }
}

void WorkbookReader::read_style_part() {
  const Relationship* link = links_.of_type("styles");
  const Package::Part* part = link ? package_.find(link->part) : nullptr;
  if (part) read_styles(package_, *part, book_->styles);
}

void WorkbookReader::read_string_part() {
  const Relationship* link = links_.of_type("sharedStrings");
  const Package::Part* part = link ? package_.find(link->part) : nullptr;
  if (part) context_.strings = read_shared_strings(package_, *part, book_->texts);
}

void WorkbookReader::read_externals() {
  for (const std::string& id : workbook_.externals) {
    const Relationship* link = links_.by_id(id);
    const Package::Part* part = link ? package_.find(link->part) : nullptr;
    // Formulas refer to linked books by position: one that is not described keeps its place.
    book_->externals.push_back(part ? read_external_link(package_, *part, book_->path)
                                    : ExternalBook());
  }
}

void WorkbookReader::read_sheet_parts() {
  for (std::size_t i = 0; i < workbook_.sheets.size(); ++i)
    if (const Package::Part* part = part_of_sheet(i)) read_sheet_part(*book_->sheets()[i], *part);
}

void WorkbookReader::read_sheet_part(Sheet& sheet, const Package::Part& part) {
  const SheetLinks wanted = read_sheet(context_, part, sheet);
  const Relationships links(package_, part.name);
  attach_tables(sheet, links, wanted, part.name);
  attach_pivots(sheet, links);
  attach_charts(sheet, links, wanted);
}

const Package::Part* WorkbookReader::part_of_sheet(std::size_t position) const {
  const WorkbookPart::SheetEntry& entry = workbook_.sheets[position];
  if (entry.relationship.empty()) return nullptr;
  const std::string sheet = "sheet \"" + book_->sheets()[position]->name + "\"";
  const Relationship* link = links_.by_id(entry.relationship);
  if (!link)
    package_.fail(OpenFailureKind::damaged, workbook_part_->name, 0,
                  sheet + " has no part: there is no relationship \"" + entry.relationship + "\"");
  const Package::Part* part = package_.find(link->part);
  if (!part)
    package_.fail(OpenFailureKind::damaged, link->part, 0, "the part of " + sheet + " is missing");
  return part;
}

void WorkbookReader::attach_tables(Sheet& sheet, const Relationships& links,
                                   const SheetLinks& wanted, const std::string& part) {
  for (const std::string& id : wanted.tables) {
    const Relationship* link = links.by_id(id);
    const Package::Part* table_part = link ? package_.find(link->part) : nullptr;
    if (!table_part)
      package_.fail(OpenFailureKind::damaged, part, 0,
                    "the part of the table with the relationship \"" + id + "\" is missing");
    Table table = read_table(package_, *table_part, sheet);
    if (const auto data = table.data(); data && table.filtered)
      sheet.layout.add_filter(data->first.row, data->last.row);
    if (!book_->find_table(table.name)) book_->add_table(std::move(table));
  }
}

void WorkbookReader::attach_pivots(Sheet& sheet, const Relationships& links) {
  for (const Relationship& link : links.all()) {
    const Package::Part* part = link.type == "pivotTable" ? package_.find(link.part) : nullptr;
    if (part) sheet.pivots.push_back(pivots_.read(*part));
  }
}

void WorkbookReader::attach_charts(Sheet& sheet, const Relationships& links,
                                   const SheetLinks& wanted) {
  const Relationship* link = wanted.drawing.empty() ? nullptr : links.by_id(wanted.drawing);
  const Package::Part* part = link ? package_.find(link->part) : nullptr;
  if (!part) return;
  sheet.charts = read_drawing(package_, *part);
  if (sheet.kind == SheetKind::chart)
    for (ChartModel& chart : sheet.charts) chart.name.clear();
}

void WorkbookReader::settle_calculation() {
  CachedResults& results = context_.results;
  const bool any_formula = results.any || !results.missing.empty();
  book_->calculation_done();
  if (any_formula && (!results.any || !options_.keep_cached_values))
    book_->everything_changed();
  else
    for (const CellAddress& cell : results.missing) book_->cell_changed(cell);
}

}  // namespace

std::unique_ptr<Book> open_workbook(const std::string& file, const OpenOptions& options) {
  try {
    return WorkbookReader(file, options).read();
  } catch (const std::bad_alloc&) {
    throw OpenFailure(OpenFailureKind::too_large, file, "", 0,
                      "the workbook needs more memory than there is");
  }
}

}  // namespace qto::embedded
