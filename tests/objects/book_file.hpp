#pragma once

#include <string>
#include <string_view>

namespace qto::embedded {

/// A folder in the one for temporary files that goes away, with all in it, with this object.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::string& path() const noexcept { return path_; }
  /// The path of a name in it; folders on the way are made.
  std::string operator/(std::string_view name) const;

 private:
  std::string path_;
};

/// Writes a workbook with one sheet, Sheet1, of these rows (sheetData content). With a `link` the
/// formulas may refer to [1]Sheet1; the file remembers 11 for its A1.
void write_book(const std::string& file, std::string_view rows, std::string_view link = {});

}  // namespace qto::embedded
