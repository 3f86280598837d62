#include "qto/hosts/embedded/xlsx/workbook_reader.hpp"

#include <algorithm>
#include <filesystem>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formula/compiled_formula.hpp"
#include "qto/hosts/embedded/xlsx/file_kind.hpp"
#include "qto/hosts/embedded/xlsx/part_path.hpp"
#include "qto/hosts/embedded/xlsx/shared_strings.hpp"
#include "qto/hosts/embedded/xlsx/sheet_names.hpp"
#include "qto/hosts/embedded/xlsx/sheet_part.hpp"
#include "qto/hosts/embedded/xlsx/styles_part.hpp"

namespace qto::embedded {
namespace {

SheetKind kind_of(const Relationship* link) noexcept {
  if (!link) return SheetKind::worksheet;
  if (link->type == "chartsheet") return SheetKind::chart;
  if (link->type == "dialogsheet") return SheetKind::dialog;
  if (link->type == "xlMacrosheet" || link->type == "xlIntlMacrosheet") return SheetKind::macro;
  return SheetKind::worksheet;
}

}  // namespace

WorkbookReader::WorkbookReader(const std::string& file, const OpenOptions& options)
    : options_(options),
      package_(file),
      book_(std::make_unique<Book>()),
      context_{package_, *book_, FormulaIntern(*book_), {}, {}, 0} {
  const std::filesystem::path path = std::filesystem::absolute(file).lexically_normal();
  book_->name = path.filename().string();
  book_->path = path.parent_path().string();
}

std::unique_ptr<Book> WorkbookReader::read() {
  find_workbook_part();
  workbook_ = read_workbook_part(package_, *workbook_part_);
  links_ = Relationships(package_, workbook_part_->name);
  book_->date1904 = workbook_.date1904;
  book_->structure_locked = workbook_.structure_locked;
  make_sheets();
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

void WorkbookReader::read_sheet_parts() {
  for (std::size_t i = 0; i < workbook_.sheets.size(); ++i) read_sheet_part(i);
}

void WorkbookReader::read_sheet_part(std::size_t position) {
  Sheet& sheet = *book_->sheets()[position];
  read_sheet(context_, part_of_sheet(position), sheet);
}

const Package::Part& WorkbookReader::part_of_sheet(std::size_t position) const {
  const WorkbookPart::SheetEntry& entry = workbook_.sheets[position];
  const std::string sheet = "sheet \"" + book_->sheets()[position]->name + "\"";
  const Relationship* link = links_.by_id(entry.relationship);
  if (!link)
    package_.fail(OpenFailureKind::damaged, workbook_part_->name, 0,
                  sheet + " has no part: there is no relationship \"" + entry.relationship + "\"");
  const Package::Part* part = package_.find(link->part);
  if (!part)
    package_.fail(OpenFailureKind::damaged, link->part, 0, "the part of " + sheet + " is missing");
  return *part;
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

}  // namespace qto::embedded
