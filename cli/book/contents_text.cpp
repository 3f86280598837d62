#include <fmt/format.h>

#include <algorithm>

#include "cli/book/contents.hpp"
#include "cli/output/chart_kind.hpp"
#include "cli/output/part_text.hpp"
#include "qto/host/constants.hpp"

namespace qto::cli {
namespace {

constexpr std::size_t widest = 40;

std::string visibility(std::int32_t visible) {
  if (visible == host::xlSheetVisible) return "";
  return visible == host::xlSheetVeryHidden ? "very hidden" : "hidden";
}

/// Lines of two or three columns under a heading; nothing when there are none.
class Section {
 public:
  explicit Section(const char* heading) : heading_(heading) {}
  void add(std::string_view first, std::string_view second, std::string_view third = {}) {
    lines_.push_back({one_line(first), one_line(second), one_line(third)});
  }
  void print() const {
    if (lines_.empty()) return;
    fmt::print("\n{}\n", heading_);
    std::size_t first = 0;
    std::size_t second = 0;
    for (const Line& line : lines_) {
      first = std::max(first, std::min(letters(line.first), widest));
      second = std::max(second, std::min(letters(line.second), widest));
    }
    for (const Line& line : lines_) {
      std::string out = "  " + line.first;
      pad(out, std::max(first + 4, letters(out) + 2));
      out += line.second;
      if (!line.third.empty()) pad(out, std::max(first + second + 6, letters(out) + 2));
      out += line.third;
      out.erase(out.find_last_not_of(' ') + 1);
      fmt::print("{}\n", out);
    }
  }

 private:
  struct Line {
    std::string first, second, third;
  };
  const char* heading_;
  std::vector<Line> lines_;
};

}  // namespace

void print_contents(const Contents& contents) {
  fmt::print("{}\n", one_line(contents.book));
  Section sheets("Sheets");
  for (const auto& sheet : contents.sheets)
    sheets.add(sheet.name,
               sheet.is_chart       ? "chart sheet"
               : sheet.used.empty() ? "empty"
                                    : sheet.used,
               visibility(sheet.visible));
  sheets.print();
  Section names("Names");
  for (const auto& name : contents.names) names.add(name.item, name.refers_to);
  names.print();
  Section charts("Series of charts");
  for (const auto& chart : contents.charts) {
    if (chart.series.empty()) charts.add(chart.item, "no series");
    for (const auto& series : chart.series)
      charts.add(series.item, chart_kind(series.chart_type), series.formula);
  }
  charts.print();
  Section pivots("Pivot tables");
  for (const auto& pivot : contents.pivots)
    pivots.add(pivot.item, pivot.name,
               pivot.source.empty() ? "source not known" : "from " + pivot.source);
  pivots.print();
}

}  // namespace qto::cli
