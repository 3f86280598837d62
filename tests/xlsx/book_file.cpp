#include "tests/xlsx/book_file.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "qto/hosts/embedded/formulas/compiled_formula.hpp"

namespace qto::test {

using namespace qto::embedded;

TemporaryFile::TemporaryFile(const std::string& name, const std::string& bytes) {
  const std::filesystem::path folder =
      std::filesystem::path(testing::TempDir()) / ("qto_xlsx_" + std::to_string(getpid()));
  std::filesystem::create_directories(folder);
  path_ = (folder / name).string();
  std::ofstream(path_, std::ios::binary) << bytes;
}

TemporaryFile::~TemporaryFile() {
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
  std::filesystem::remove(std::filesystem::path(path_).parent_path(), ignored);
}

std::string root(std::string_view element, std::string_view content) {
  std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<";
  xml.append(element).append(" xmlns=\"").append(main_space).append("\" xmlns:r=\"");
  xml.append(rel_space).append("\">").append(content).append("</");
  return xml.append(element.substr(0, element.find(' '))).append(">");
}

BookFile::BookFile() {
  links("", {{"rId1", "officeDocument", "xl/workbook.xml"}});
  workbook("<sheets><sheet name=\"Sheet1\" sheetId=\"1\" r:id=\"r1\"/></sheets>", {"worksheet"});
  cells("");
}

BookFile& BookFile::part(const std::string& name, const std::string& content) {
  const auto found =
      std::ranges::find_if(parts_, [&](const ZipEntry& entry) { return entry.first == name; });
  if (found != parts_.end())
    found->second = content;
  else
    parts_.emplace_back(name, content);
  return *this;
}

BookFile& BookFile::remove(const std::string& name) {
  std::erase_if(parts_, [&](const ZipEntry& entry) { return entry.first == name; });
  return *this;
}

BookFile& BookFile::rename(const std::string& from, const std::string& to) {
  for (ZipEntry& entry : parts_)
    if (entry.first == from) entry.first = to;
  return *this;
}

BookFile& BookFile::edit(const std::string& name, const std::string& from, const std::string& to) {
  for (auto& [entry, content] : parts_) {
    if (entry != name) continue;
    std::size_t at = content.find(from);
    if (at == std::string::npos) throw std::logic_error(name + " has no " + from);
    for (; at != std::string::npos; at = content.find(from, at + to.size()))
      content.replace(at, from.size(), to);
  }
  return *this;
}

BookFile& BookFile::links(const std::string& owner, const std::vector<Link>& links) {
  std::string xml =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
  for (const Link& link : links)
    xml += "<Relationship Id=\"" + link.id + "\" Type=\"" + std::string(rel_space) + "/" +
           link.type + "\" Target=\"" + link.target + "\"" +
           (link.external ? " TargetMode=\"External\"/>" : "/>");
  const std::size_t name = owner.find_last_of('/') + 1;
  return part(owner.substr(0, name) + "_rels/" + owner.substr(name) + ".rels",
              xml + "</Relationships>");
}

BookFile& BookFile::workbook(const std::string& content,
                             const std::vector<std::string>& sheet_types) {
  part("xl/workbook.xml", root("workbook", content));
  workbook_links_.clear();
  for (std::size_t i = 0; i < sheet_types.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    workbook_links_.push_back({"r" + number, sheet_types[i], "sheet" + number + ".xml"});
    part("xl/sheet" + number + ".xml", root("worksheet", "<sheetData/>"));
  }
  workbook_links_.push_back({"rs", "sharedStrings", "sharedStrings.xml"});
  workbook_links_.push_back({"rt", "styles", "styles.xml"});
  workbook_links_.push_back({"x1", "externalLink", "externalLinks/externalLink1.xml"});
  return links("xl/workbook.xml", workbook_links_);
}

BookFile& BookFile::cells(const std::string& rows) {
  return sheet("<sheetData>" + rows + "</sheetData>");
}

BookFile& BookFile::sheet(const std::string& content) {
  return part("xl/sheet1.xml", root("worksheet", content));
}

BookFile& BookFile::strings(const std::string& items) {
  return part("xl/sharedStrings.xml", root("sst", items));
}

BookFile& BookFile::styles(const std::string& content) {
  return part("xl/styles.xml", root("styleSheet", content));
}

std::unique_ptr<Book> BookFile::open(const OpenOptions& options) const {
  const TemporaryFile file("book.xlsx", bytes());
  return open_workbook(file.path(), options);
}

const Sheet& sheet_of(const Book& book, std::string_view name) {
  const Sheet* sheet = book.find_sheet(name);
  if (!sheet) throw std::logic_error("no sheet " + std::string(name));
  return *sheet;
}

std::string shown(const Book& book, std::string_view sheet, std::string_view cell) {
  const Cell* found = sheet_of(book, sheet).cells.find(parse_cell(cell)->pos);
  if (!found) return "";
  char number[40];
  switch (found->type()) {
    case CellType::number:
      std::snprintf(number, sizeof number, "%.15g", found->number());
      return number;
    case CellType::text:
      return "\"" + std::string(book.texts.view(found->text())) + "\"";
    case CellType::boolean:
      return found->boolean() ? "TRUE" : "FALSE";
    case CellType::error:
      return std::string(error_text(found->error()));
    case CellType::empty:
      break;
  }
  return "";
}

std::string formula(const Book& book, std::string_view sheet, std::string_view cell) {
  const Sheet& on = sheet_of(book, sheet);
  const CellPos at = parse_cell(cell)->pos;
  std::string text;
  if (const FormulaId id = on.formula_at(at)) {
    const FormulaRecord& record = book.formula(id);
    const CellPos from = record.kind == FormulaKind::normal ? at : record.block.first;
    record.compiled->append_formula(text, {&book, &on, from});
  }
  return text;
}

}  // namespace qto::test
