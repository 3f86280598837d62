#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "tests/support/zip_writer.hpp"

namespace qto::test {

/// A folder for the workbooks of one test; it goes away with this object.
class BookFolder {
 public:
  BookFolder() {
    static int count = 0;
    path_ = std::filesystem::temp_directory_path() /
            ("qto_books_" + std::to_string(getpid()) + "_" + std::to_string(++count));
    std::filesystem::create_directories(path_);
  }
  BookFolder(const BookFolder&) = delete;
  BookFolder& operator=(const BookFolder&) = delete;
  ~BookFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string path() const { return path_.string(); }

  /// A file of these bytes.
  void put(const std::string& name, const std::string& bytes) const {
    std::ofstream(path_ / name, std::ios::binary) << bytes;
  }

  /// A workbook with one sheet, Sheet1, written as "A1=5; B1==A1*2; name Rate=Sheet1!$A$1":
  /// numbers, formulas without values, and names.
  void put_book(const std::string& name, std::string_view text) const {
    std::string cells;
    std::string names;
    while (!text.empty()) {
      const std::size_t end = text.find("; ");
      const std::string_view entry = text.substr(0, end);
      text = end == std::string_view::npos ? "" : text.substr(end + 2);
      const std::size_t equals = entry.find('=');
      std::string place(entry.substr(0, equals));
      const std::string what(entry.substr(equals + 1));
      if (place.starts_with("name "))
        names += "<definedName name='" + place.substr(5) + "'>" + what + "</definedName>";
      else
        cells += "<row r='" + place.substr(1) + "'><c r='" + place + "'>" +
                 (what.starts_with('=') ? "<f>" + what.substr(1) + "</f>" : "<v>" + what + "</v>") +
                 "</c></row>";
    }
    put(name, zip_bytes(parts(cells, names)));
  }

 private:
  static std::vector<ZipEntry> parts(const std::string& cells, const std::string& names) {
    const std::string head = "<?xml version='1.0' encoding='UTF-8'?>";
    const std::string office =
        "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
    const std::string relations = "http://schemas.openxmlformats.org/package/2006/relationships";
    const std::string main = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
    const std::string kind = "application/vnd.openxmlformats-officedocument.spreadsheetml.";
    return {
        {"[Content_Types].xml",
         head +
             "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'>"
             "<Default Extension='rels' "
             "ContentType='application/vnd.openxmlformats-package.relationships+xml'/>"
             "<Override PartName='/xl/workbook.xml' ContentType='" +
             kind + "sheet.main+xml'/><Override PartName='/xl/sheet1.xml' ContentType='" + kind +
             "worksheet+xml'/></Types>"},
        {"_rels/.rels", head + "<Relationships xmlns='" + relations +
                            "'><Relationship Id='r1' Type='" + office +
                            "/officeDocument' Target='xl/workbook.xml'/></Relationships>"},
        {"xl/_rels/workbook.xml.rels", head + "<Relationships xmlns='" + relations +
                                           "'><Relationship Id='r1' Type='" + office +
                                           "/worksheet' Target='sheet1.xml'/></Relationships>"},
        {"xl/workbook.xml",
         head + "<workbook xmlns='" + main + "' xmlns:r='" + office +
             "'><sheets><sheet name='Sheet1' sheetId='1' r:id='r1'/></sheets>" +
             (names.empty() ? "" : "<definedNames>" + names + "</definedNames>") + "</workbook>"},
        {"xl/sheet1.xml",
         head + "<worksheet xmlns='" + main + "'><sheetData>" + cells + "</sheetData></worksheet>"},
    };
  }

  std::filesystem::path path_;
};

}  // namespace qto::test
