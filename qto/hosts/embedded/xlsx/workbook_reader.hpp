#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qto/hosts/embedded/xlsx/load_context.hpp"
#include "qto/hosts/embedded/xlsx/open_workbook.hpp"
#include "qto/hosts/embedded/xlsx/pivot_part.hpp"
#include "qto/hosts/embedded/xlsx/relationships.hpp"
#include "qto/hosts/embedded/xlsx/sheet_part.hpp"
#include "qto/hosts/embedded/xlsx/workbook_part.hpp"

namespace qto::embedded {

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

}  // namespace qto::embedded
