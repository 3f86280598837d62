#include "cli/show/show_json.hpp"

#include "cli/answer/answer_json.hpp"
#include "cli/output/part_json.hpp"

namespace qto::cli {
namespace {

template <class List, class Write>
void write_all(JsonWriter& json, std::string_view name, const List& list, Write&& write) {
  json.key(name);
  json.begin_array();
  for (const auto& entry : list) write(entry);
  json.end_array();
}

void begin(JsonWriter& json, ModelPart& part) {
  json.begin_object();
  json.member("operation", name_of(Operation::show));
  json.key("start");
  write_part(json, part);
}

void finish(JsonWriter& json, const Reports& reports) {
  write_reports(json, reports);
  json.end_object();
  json.finish();
}

}  // namespace

void write_picture(ModelPart& part, const Picture& picture, const Reports& reports) {
  JsonWriter json(stdout);
  begin(json, part);
  const auto address = [&](const Rect& block) { json.text(address_of(block)); };
  write_all(json, "Rows", picture.rows,
            [&](const Picture::Line& row) { json.number(std::int64_t{row.number}); });
  write_all(json, "Columns", picture.columns, [&](const Picture::Line& column) {
    std::string letters;
    append_column(letters, column.number);
    json.text(letters);
  });
  write_all(json, "Texts", picture.cells, [&](const auto& row) {
    json.begin_array();
    for (const Picture::Shown& cell : row) json.text(cell.text);
    json.end_array();
  });
  write_all(json, "HiddenRows", picture.hidden_rows, address);
  write_all(json, "HiddenColumns", picture.hidden_columns, address);
  finish(json, reports);
}

void write_series_view(ModelPart& part, const SeriesView& view, const Reports& reports) {
  JsonWriter json(stdout);
  begin(json, part);
  write_all(json, "Series", view.series, [&](const SeriesView::Series& series) {
    json.begin_object();
    json.member("Name", series.name);
    json.member("ChartType", std::int64_t{series.chart_type});
    json.member("Formula", series.formula);
    json.member("Selected", series.selected);
    json.end_object();
  });
  write_all(json, "Points", view.points, [&](const SeriesView::Point& point) {
    json.begin_object();
    json.member("Category", point.category);
    json.member("Text", point.value);
    json.end_object();
  });
  json.member("PointCount", static_cast<std::int64_t>(view.point_count));
  finish(json, reports);
}

}  // namespace qto::cli
