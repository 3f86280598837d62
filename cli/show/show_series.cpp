#include "cli/show/show_series.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "cli/output/chart_kind.hpp"
#include "cli/output/part_text.hpp"
#include "cli/terminal/text_width.hpp"
#include "qto/host/host.hpp"
#include "qto/model/display_format.hpp"
#include "qto/model/series_formula.hpp"

namespace qto::cli {
namespace {

constexpr std::size_t most_points = 40;
constexpr std::size_t widest_category = 24;

struct Shown {
  std::string text;
  Variant value;
};

Shown shown_cell(const host::Range& cell) {
  Shown shown{cell.Text(), cell.value()};
  if (shown.text.starts_with("##")) shown.text = format_hidden_number(shown.value);
  return shown;
}

void add_cells(std::vector<Shown>& list, const host::Range& range) {
  const auto count = std::min<std::int64_t>(range.CellsCount(), most_points + 1);
  const std::int32_t columns = range.ColumnsCount();
  for (std::int64_t k = 0; k < count && list.size() <= most_points; ++k)
    list.push_back(shown_cell(*range.Cells(static_cast<std::int32_t>(k / columns) + 1,
                                           static_cast<std::int32_t>(k % columns) + 1)));
}

/// A value that no cell shows.
std::string plain(const Variant& value) {
  if (const auto* number = value.get_if<double>()) return fmt::format("{}", *number);
  return format_value(value);
}

/// The areas of "(A1:A3,C1:C3)", or the text itself.
std::vector<std::string_view> areas_of(std::string_view argument) {
  if (!argument.starts_with('(')) return {argument};
  return series_arguments(argument);
}

struct Values {
  std::vector<Shown> shown;
  std::size_t count = 0;
};

Values values_of(const host::Worksheet& sheet, std::string_view argument) {
  Values values;
  for (const std::string_view area : areas_of(argument)) {
    if (area.empty()) continue;
    const Variant result = sheet.Evaluate(area);
    if (const auto range = ref_cast<host::Range>(result.object())) {
      values.count += static_cast<std::size_t>(range->CellsCount());
      add_cells(values.shown, *range);
    } else if (result.is_array()) {
      values.count += result.array().items().size();
      for (const Variant& item : result.array().items()) {
        if (values.shown.size() > most_points) break;
        values.shown.push_back({plain(item), item});
      }
    }
  }
  return values;
}

Ref<host::Worksheet> sheet_to_evaluate_on(const ModelPart& part) {
  if (auto sheet = ref_cast<host::Worksheet>(part.Sheet())) return sheet;
  const auto book = part.Workbook();
  return book->WorksheetsCount() > 0 ? book->Worksheets(1) : nullptr;
}

void add_points(SeriesView& view, const host::Worksheet& sheet, const std::string& formula) {
  const auto arguments = series_arguments(formula);
  if (arguments.size() < 3) return;
  const Values categories = values_of(sheet, arguments[1]);
  const Values values = values_of(sheet, arguments[2]);
  view.point_count = values.count;
  for (std::size_t i = 0; i < std::min(values.shown.size(), most_points); ++i) {
    SeriesView::Point point;
    point.category =
        i < categories.shown.size() ? one_line(categories.shown[i].text) : std::to_string(i + 1);
    point.value = one_line(values.shown[i].text);
    const Variant& value = values.shown[i].value;
    if (const auto* number = value.get_if<double>()) {
      point.number = *number;
      point.is_number = std::isfinite(*number);
    }
    view.points.push_back(std::move(point));
  }
}

/// Bars from the least to the greatest value, zero included.
class Bars {
 public:
  Bars(const std::vector<SeriesView::Point>& points, std::size_t width) : width_(width) {
    for (const auto& point : points) {
      if (!point.is_number) continue;
      least_ = std::min(least_, point.number);
      greatest_ = std::max(greatest_, point.number);
    }
  }
  std::string of(const SeriesView::Point& point) const {
    if (!point.is_number || greatest_ <= least_) return "";
    const std::size_t zero = place(0);
    const std::size_t end = place(point.number);
    std::string bar(std::min(zero, end), ' ');
    for (std::size_t i = std::min(zero, end); i < std::max(zero, end); ++i) bar += "▇";
    return bar.empty() || zero == end ? bar + "▏" : bar;
  }

 private:
  std::size_t place(double value) const {
    // Halved before they are subtracted: the span of two large numbers is no number any more.
    const double span = greatest_ / 2 - least_ / 2;
    const double share = (value / 2 - least_ / 2) / span;
    return static_cast<std::size_t>(std::lround(share * static_cast<double>(width_)));
  }
  std::size_t width_;
  double least_ = 0;
  double greatest_ = 0;
};

}  // namespace

SeriesView view_of(ModelPart& part) {
  SeriesView view;
  const auto chosen = ref_cast<host::Series>(part.UnderlyingObject());
  const auto chart = ref_cast<host::Chart>(chosen->Parent());
  const std::string formula = chosen->Formula();
  for (const auto& series : chart->SeriesCollection()) {
    view.series.push_back({series->Name(), series->Formula(), series->ChartType(), false});
    view.series.back().selected =
        view.series.back().formula == formula && view.series.back().name == chosen->Name();
  }
  if (const auto sheet = sheet_to_evaluate_on(part)) add_points(view, *sheet, formula);
  return view;
}

std::string drawn(ModelPart& part, const SeriesView& view, const PictureSize& size) {
  std::string out = readable_address(part, part.WorkBookName()) + "\n\n";
  std::size_t name = 0;
  for (const auto& series : view.series)
    name = std::max(name, std::min(text_width(series.name), widest_category));
  for (const auto& series : view.series) {
    std::string line = series.selected ? "▸ " : "  ";
    line += clipped(one_line(series.name), name);
    line += std::string(name + 4 - text_width(line), ' ');
    line += std::string(chart_kind(series.chart_type)) + "  ";
    line += clipped(one_line(series.formula), size.width - std::min(text_width(line), size.width));
    out += line + "\n";
  }
  if (view.points.empty()) return out;
  std::size_t category = 0;
  std::size_t value = 0;
  for (const auto& point : view.points) {
    category = std::max(category, std::min(text_width(point.category), widest_category));
    value = std::max(value, text_width(point.value));
  }
  const std::size_t used = category + value + 6;
  const Bars bars(view.points, size.width > used + 8 ? size.width - used : 8);
  out += "\n";
  for (const auto& point : view.points) {
    const std::string label = clipped(point.category, category);
    std::string line = "  " + label + std::string(category - text_width(label) + 2, ' ');
    line += std::string(value - text_width(point.value), ' ') + point.value + "  " + bars.of(point);
    line.erase(line.find_last_not_of(' ') + 1);
    out += line + "\n";
  }
  if (view.point_count > view.points.size())
    out += fmt::format("  … {} more\n", view.point_count - view.points.size());
  return out;
}

}  // namespace qto::cli
