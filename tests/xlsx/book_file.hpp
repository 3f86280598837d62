#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/xlsx/open_workbook.hpp"
#include "tests/support/zip_writer.hpp"

namespace qto::test {

inline constexpr std::string_view main_space =
    "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
inline constexpr std::string_view rel_space =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

/// A file in the folder for temporary files that goes away with this object.
class TemporaryFile {
 public:
  TemporaryFile(const std::string& name, const std::string& bytes);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  const std::string& path() const noexcept { return path_; }

 private:
  std::string path_;
};

struct Link {
  std::string id;
  std::string type;  ///< last segment
  std::string target;
  bool external = false;
};

/// The package of a small workbook, changed part by part. It starts with one empty sheet, Sheet1.
class BookFile {
 public:
  BookFile();

  /// Adds or replaces a part.
  BookFile& part(const std::string& name, const std::string& content);
  BookFile& remove(const std::string& name);
  BookFile& rename(const std::string& from, const std::string& to);
  /// Replaces every occurrence of a text in a part; it must occur.
  BookFile& edit(const std::string& name, const std::string& from, const std::string& to);
  /// The relationships of a part.
  BookFile& links(const std::string& owner, const std::vector<Link>& links);
  /// What the workbook element holds, and the sheet parts that it needs: xl/sheet<n>.xml under the
  /// relationships r1, r2, ... of the types given.
  BookFile& workbook(const std::string& content, const std::vector<std::string>& sheet_types);
  /// The content of the sheetData element of the first sheet.
  BookFile& cells(const std::string& rows);
  /// The content of the worksheet element of the first sheet.
  BookFile& sheet(const std::string& content);
  BookFile& strings(const std::string& items);
  BookFile& styles(const std::string& content);

  std::string bytes() const { return zip_bytes(parts_); }
  std::unique_ptr<embedded::Book> open(const embedded::OpenOptions& options = {}) const;

 private:
  std::vector<ZipEntry> parts_;
  std::vector<Link> workbook_links_;
};

/// An element of the main vocabulary as the root of a part.
std::string root(std::string_view element, std::string_view content);

/// The cell's value as text: numbers short, texts in quotes, TRUE, errors by their text, "" if
/// there is nothing.
std::string shown(const embedded::Book& book, std::string_view sheet, std::string_view cell);
/// The cell's formula with "=", "" if none.
std::string formula(const embedded::Book& book, std::string_view sheet, std::string_view cell);
const embedded::Sheet& sheet_of(const embedded::Book& book, std::string_view name);

}  // namespace qto::test
