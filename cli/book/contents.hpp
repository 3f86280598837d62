#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/output/reports.hpp"
#include "qto/host/chart.hpp"
#include "qto/host/workbook.hpp"

namespace qto::cli {

/// What of a book can be asked about, each thing with its ITEM where it is one.
struct Contents {
  struct Sheet {
    std::string name;
    bool is_chart = false;
    std::int32_t visible = -1;
    std::string used;  ///< address of the used cells; "" for an empty sheet or a chart
  };
  struct Name {
    std::string item, refers_to;
  };
  struct Series {
    std::string item, name, formula;
    std::int32_t chart_type = 0;
  };
  struct Chart {
    std::string item;  ///< without its "!" and series
    std::string sheet, chart;
    std::vector<Series> series;
  };
  struct Pivot {
    std::string item;  ///< the range that it occupies
    std::string name, source;
  };
  std::string book;
  std::vector<Sheet> sheets;
  std::vector<Name> names;  ///< those that are not hidden
  std::vector<Chart> charts;
  std::vector<Pivot> pivots;
};

Contents contents_of(const Ref<host::Workbook>& book);

/// Each series of a chart as it is written behind the "!": its name, or "#2" where that does not
/// tell it from another.
std::vector<std::string> series_items(const std::vector<Ref<host::Series>>& series);

/// Print on standard output, for people and for programs.
void print_contents(const Contents& contents);
void write_contents(const Contents& contents, const Reports& reports);

}  // namespace qto::cli
