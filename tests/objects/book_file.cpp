#include "tests/objects/book_file.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/support/zip_writer.hpp"

namespace qto::embedded {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view main_space = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
constexpr std::string_view rel_space =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

std::string element(std::string_view name, std::string_view content) {
  std::string xml = "<";
  xml.append(name).append(" xmlns='").append(main_space).append("' xmlns:r='");
  return xml.append(rel_space).append("'>").append(content).append("</").append(name).append(">");
}

std::string relationship(std::string_view id, std::string_view type, std::string_view target,
                         bool external = false) {
  std::string xml = "<Relationship Id='";
  xml.append(id).append("' Type='").append(rel_space).append("/").append(type);
  xml.append("' Target='").append(target).append(external ? "' TargetMode='External'/>" : "'/>");
  return xml;
}

std::string relationships(const std::string& content) {
  return "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>" +
         content + "</Relationships>";
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  static int number = 0;
  const std::string name =
      "qto_objects_" + std::to_string(getpid()) + "_" + std::to_string(++number);
  path_ = (fs::path(testing::TempDir()) / name).lexically_normal().string();
  fs::create_directories(path_);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::operator/(std::string_view name) const {
  const fs::path path = fs::path(path_) / name;
  fs::create_directories(path.parent_path());
  return path.string();
}

void write_book(const std::string& file, std::string_view rows, std::string_view link) {
  std::string sheets = "<sheets><sheet name='Sheet1' sheetId='1' r:id='r1'/></sheets>";
  std::string parts = relationship("r1", "worksheet", "sheet1.xml");
  std::vector<test::ZipEntry> entries{
      {"_rels/.rels", relationships(relationship("r1", "officeDocument", "xl/workbook.xml"))},
      {"xl/sheet1.xml", element("worksheet", "<sheetData>" + std::string(rows) + "</sheetData>")}};
  if (!link.empty()) {
    sheets += "<externalReferences><externalReference r:id='x1'/></externalReferences>";
    parts += relationship("x1", "externalLink", "link1.xml");
    entries.emplace_back("xl/link1.xml",
                         element("externalLink",
                                 "<externalBook r:id='b'><sheetNames><sheetName val='Sheet1'/>"
                                 "</sheetNames><sheetDataSet><sheetData sheetId='0'><row r='1'>"
                                 "<cell r='A1'><v>11</v></cell></row></sheetData></sheetDataSet>"
                                 "</externalBook>"));
    entries.emplace_back("xl/_rels/link1.xml.rels",
                         relationships(relationship("b", "externalLinkPath", link, true)));
  }
  entries.emplace_back("xl/workbook.xml", element("workbook", sheets));
  entries.emplace_back("xl/_rels/workbook.xml.rels", relationships(parts));
  std::ofstream(file, std::ios::binary) << test::zip_bytes(entries);
}

}  // namespace qto::embedded
