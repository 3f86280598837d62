#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/book/chart.hpp"
#include "qto/hosts/embedded/book/external_book.hpp"
#include "qto/hosts/embedded/book/style_table.hpp"
#include "qto/hosts/embedded/book/table.hpp"
#include "qto/hosts/embedded/book/text_pool.hpp"
#include "qto/hosts/embedded/xlsx/load_context.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

/// The parts of a package, read one by one into what the book keeps of them.
namespace qto::embedded {

/// Replaces the styles of a book by the cell formats of its style part; the number that a cell
/// gives for its style is then the StyleId.
void read_styles(Package& package, const Package::Part& part, StyleTable& styles);

/// The texts of a shared string part in their order, brought into the pool. Runs of rich text are
/// joined; phonetic hints are left out; texts longer than a cell holds are cut.
std::vector<TextId> read_shared_strings(Package& package, const Package::Part& part,
                                        TextPool& texts);

/// Reads a table of `sheet`. Throws OpenFailure when the part does not say where the table is.
Table read_table(Package& package, const Package::Part& part, const Sheet& sheet);

/// The series of a chart part: group by group as they are drawn, by plot order inside a group.
std::vector<ChartSeries> read_chart(Package& package, const Package::Part& part);

/// The charts that a drawing holds, in its order, under the names of their frames. A chart whose
/// part is missing is left out.
std::vector<ChartModel> read_drawing(Package& package, const Package::Part& part);

/// Reads what the file keeps of a linked book, or of a link to another application. A relative
/// target is taken from `base_folder`.
ExternalBook read_external_link(Package& package, const Package::Part& part,
                                std::string_view base_folder);

/// Relationships that a sheet part names beside its cells.
struct SheetLinks {
  std::vector<std::string> tables;
  std::string drawing;
};

/// Reads the part of a sheet of any kind into the sheet.
SheetLinks read_sheet(LoadContext& context, const Package::Part& part, Sheet& sheet);

}  // namespace qto::embedded
