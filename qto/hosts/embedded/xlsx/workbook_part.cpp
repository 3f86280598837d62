#include "qto/hosts/embedded/xlsx/workbook_part.hpp"

#include <algorithm>
#include <utility>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/xlsx/limits.hpp"
#include "qto/hosts/embedded/xlsx/protection.hpp"
#include "qto/hosts/embedded/xlsx/xml_reader.hpp"
#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {
namespace {

SheetVisibility visibility_of(std::string_view state) noexcept {
  if (state == "hidden") return SheetVisibility::hidden;
  if (state == "veryHidden") return SheetVisibility::very_hidden;
  return SheetVisibility::visible;
}

class WorkbookHandler final : public XmlHandler {
 public:
  explicit WorkbookHandler(WorkbookPart& into) : into_(into) {}

  bool is_workbook() const noexcept { return is_workbook_; }

  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    if (space != Space::main) return;
    if (name == "workbook") is_workbook_ = true;
    if (name == "workbookPr") into_.date1904 = attributes.flag("date1904");
    if (name == "calcPr") read_iteration(attributes);
    if (name == "workbookProtection") {
      into_.structure.enabled = attributes.flag("lockStructure");
      read_password(attributes, book_password, into_.structure);
    }
    if (name == "workbookView" && !std::exchange(seen_view_, true))
      into_.active_sheet = attributes.whole_or("activeTab", 0);
    if (name == "sheet") add_sheet(attributes);
    if (name == "externalReference") into_.externals.emplace_back(attributes.relationship());
    if (name == "definedName") start_name(attributes);
  }

  void on_end(Space space, std::string_view name) override {
    if (space != Space::main || name != "definedName" || !in_name_) return;
    in_name_ = false;
    decode_escapes(into_.names.back().refers_to);
  }

  void on_text(std::string_view text) override {
    if (!in_name_) return;
    std::string& refers_to = into_.names.back().refers_to;
    if (refers_to.size() < limits::formula_bytes) refers_to.append(text);
  }

 private:
  void add_sheet(const Attributes& attributes) {
    WorkbookPart::SheetEntry sheet;
    sheet.name = attributes.text("name");
    decode_escapes(sheet.name);
    sheet.relationship = attributes.relationship();
    sheet.visibility = visibility_of(attributes.text("state"));
    into_.sheets.push_back(std::move(sheet));
  }

  void read_iteration(const Attributes& attributes) {
    constexpr std::int64_t most_rounds = 32767;
    Iteration& iteration = into_.iteration;
    iteration.on = attributes.flag("iterate");
    iteration.count = static_cast<int>(std::clamp(
        attributes.whole_or("iterateCount", iteration.count), std::int64_t{1}, most_rounds));
    iteration.change = attributes.number_or("iterateDelta", iteration.change);
  }

  void start_name(const Attributes& attributes) {
    WorkbookPart::NameEntry entry;
    entry.name = attributes.text("name");
    decode_escapes(entry.name);
    if (attributes.find("localSheetId")) entry.sheet = attributes.whole_or("localSheetId", -1);
    entry.hidden = attributes.flag("hidden");
    into_.names.push_back(std::move(entry));
    in_name_ = true;
  }

  WorkbookPart& into_;
  bool is_workbook_ = false;
  bool seen_view_ = false;
  bool in_name_ = false;
};

}  // namespace

WorkbookPart read_workbook_part(Package& package, const Package::Part& part) {
  WorkbookPart workbook;
  WorkbookHandler handler(workbook);
  PartStream stream = package.open(part);
  read_xml(stream, handler);
  if (!handler.is_workbook())
    package.fail(OpenFailureKind::not_a_workbook, part.name, 0, "the part is no workbook");
  if (workbook.sheets.size() > limits::sheets)
    package.fail(OpenFailureKind::too_large, part.name, 0, "the workbook has too many sheets");
  return workbook;
}

std::string SheetNames::unique(const std::string& name) {
  if (!name.empty() && taken_.insert(text::fold_case(name)).second) return name;
  int& number = numbered_[text::fold_case(name)];
  for (;;) {
    ++number;
    std::string candidate = name.empty() ? "Sheet" + std::to_string(number)
                                         : name + " (" + std::to_string(number + 1) + ")";
    if (taken_.insert(text::fold_case(candidate)).second) return candidate;
  }
}

}  // namespace qto::embedded
