#include "cli/book/contents.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "cli/answer/answer_json.hpp"
#include "cli/output/chart_kind.hpp"
#include "cli/output/json_writer.hpp"
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

namespace {

template <class List, class Write>
void write_list(JsonWriter& json, std::string_view name, const List& list, Write&& write) {
  json.key(name);
  json.begin_array();
  for (const auto& entry : list) {
    json.begin_object();
    write(entry);
    json.end_object();
  }
  json.end_array();
}

}  // namespace

void write_contents(const Contents& contents, const Reports& reports) {
  JsonWriter json(stdout);
  json.begin_object();
  json.member("operation", name_of(Operation::part));
  json.member("WorkBookName", contents.book);
  write_list(json, "Sheets", contents.sheets, [&](const Contents::Sheet& sheet) {
    json.member("Name", sheet.name);
    json.member("Type", sheet.is_chart ? "Chart" : "Worksheet");
    json.member("Visible", std::int64_t{sheet.visible});
    json.member("UsedRange", sheet.used);
  });
  write_list(json, "Names", contents.names, [&](const Contents::Name& name) {
    json.member("Item", name.item);
    json.member("RefersTo", name.refers_to);
  });
  write_list(json, "Charts", contents.charts, [&](const Contents::Chart& chart) {
    json.member("WorkSheetName", chart.sheet);
    json.member("EmbeddedChartName", chart.chart);
    write_list(json, "Series", chart.series, [&](const Contents::Series& series) {
      json.member("Item", series.item);
      json.member("Name", series.name);
      json.member("ChartType", std::int64_t{series.chart_type});
      json.member("Formula", series.formula);
    });
  });
  write_list(json, "PivotTables", contents.pivots, [&](const Contents::Pivot& pivot) {
    json.member("Item", pivot.item);
    json.member("Name", pivot.name);
    json.member("SourceData", pivot.source);
  });
  write_reports(json, reports);
  json.end_object();
  json.finish();
}

}  // namespace qto::cli
