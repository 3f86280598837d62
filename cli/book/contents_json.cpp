#include "cli/answer/answer_json.hpp"
#include "cli/book/contents.hpp"
#include "cli/output/json_writer.hpp"

namespace qto::cli {
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
