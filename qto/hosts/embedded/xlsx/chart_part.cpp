#include "qto/hosts/embedded/xlsx/part_readers.hpp"

#include <algorithm>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/xlsx/chart_kind.hpp"
#include "qto/hosts/embedded/xlsx/limits.hpp"
#include "qto/hosts/embedded/xlsx/relationships.hpp"
#include "qto/hosts/embedded/xlsx/xml_reader.hpp"
#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {
namespace {

/// One argument of a series: a reference, or the values that the chart keeps itself.
struct SeriesArgument {
  std::string formula;
  std::vector<std::string> points;
  bool literal = false;
  bool text = false;
};

std::string quoted(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) out.append(c == '"' ? 2 : 1, c);
  return out + '"';
}

std::string formula_of(const SeriesArgument& argument) {
  if (!argument.literal || argument.points.empty()) return argument.formula;
  std::string array = "{";
  for (const std::string& point : argument.points) {
    if (array.size() > 1) array += ',';
    array += argument.text ? quoted(point) : point;
  }
  return array + '}';
}

class ChartHandler final : public XmlHandler {
 public:
  explicit ChartHandler(std::vector<ChartSeries>& into) : into_(into) {}

  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    path_.emplace_back(space == Space::chart ? name : "");
    if (space != Space::chart) return;
    if (name == "plotArea") plot_depth_ = depth();
    if (plot_depth_ == 0) return;
    if (depth() == plot_depth_ + 1 && name.ends_with("Chart")) start_group(name);
    if (group_depth_ == 0) return;
    if (depth() == group_depth_ + 1) start_in_group(name, attributes);
    if (series_depth_ != 0 && depth() > series_depth_) start_in_series(name, attributes);
  }

  void on_end(Space, std::string_view) override {
    sink_ = nullptr;
    if (depth() == series_depth_) end_series();
    if (depth() == group_depth_) end_group();
    if (depth() == plot_depth_) plot_depth_ = 0;
    path_.pop_back();
  }

  void on_text(std::string_view text) override {
    if (sink_ && sink_->size() < standard_limits.text_length) sink_->append(text);
  }

 private:
  struct Series {
    ChartSeries model;
    SeriesLook look;
    SeriesArgument name, categories, values, sizes;
  };

  std::size_t depth() const noexcept { return path_.size(); }

  void start_group(std::string_view name) {
    group_depth_ = depth();
    group_ = ChartGroup();
    group_.element = name;
    series_.clear();
  }

  void start_in_group(std::string_view name, const Attributes& attributes) {
    const std::string_view value = attributes.text("val");
    const bool flag = attributes.flag("val", true);
    if (name == "ser") {
      series_depth_ = depth();
      series_.emplace_back();
    } else if (name == "grouping") {
      group_.grouping = value;
    } else if (name == "barDir") {
      group_.horizontal = value == "bar";
    } else if (name == "scatterStyle" || name == "radarStyle" || name == "ofPieType") {
      group_.style = value;
    } else if (name == "shape") {
      group_.shape = value;
    } else if (name == "wireframe") {
      group_.wireframe = flag;
    } else if (name == "bubble3D") {
      group_.bubbles_3d = flag;
    } else if (name == "marker") {
      group_.markers = flag;
    }
  }

  void start_in_series(std::string_view name, const Attributes& attributes) {
    Series& series = series_.back();
    const std::string_view below = path_[series_depth_];
    if (depth() == series_depth_ + 1) {
      if (name == "order")
        series.model.order = static_cast<int>(
            std::clamp<std::int64_t>(attributes.whole_or("val", 0), 0, 100'000) + 1);
      if (name == "smooth") series.look.smooth = attributes.flag("val", true);
      if (name == "explosion") series.look.exploded = attributes.whole_or("val", 0) > 0;
      if (name == "bubble3D") group_.bubbles_3d = attributes.flag("val", true);
    } else if (below == "marker") {
      if (name == "symbol") series.look.no_marker = attributes.text("val") == "none";
    } else if (SeriesArgument* argument = argument_of(series, below)) {
      start_in_argument(*argument, name);
    }
  }

  static SeriesArgument* argument_of(Series& series, std::string_view element) {
    if (element == "tx") return &series.name;
    if (element == "cat" || element == "xVal") return &series.categories;
    if (element == "val" || element == "yVal") return &series.values;
    if (element == "bubbleSize") return &series.sizes;
    return nullptr;
  }

  void start_in_argument(SeriesArgument& argument, std::string_view name) {
    if (name == "numLit" || name == "strLit") {
      argument.literal = true;
      argument.text = name == "strLit";
    } else if (name == "f") {
      sink_ = &argument.formula;
    } else if (name == "v") {
      argument.points.emplace_back();
      sink_ = &argument.points.back();
    }
  }

  void end_series() {
    series_depth_ = 0;
    Series& series = series_.back();
    decode_escapes(series.name.formula);
    series.model.name_formula = series.name.formula;
    for (const std::string& point : series.name.points) {
      if (!series.model.name.empty()) series.model.name += ' ';
      series.model.name += point;
    }
    if (series.model.name_formula.empty() && !series.model.name.empty())
      series.model.name_formula = quoted(series.model.name);
    if (series.model.name.empty())
      series.model.name = "Series" + std::to_string(series.model.order);
    series.model.category_formula = formula_of(series.categories);
    series.model.values_formula = formula_of(series.values);
    series.model.sizes_formula = formula_of(series.sizes);
    for (SeriesArgument* argument : {&series.categories, &series.values, &series.sizes})
      argument->points.clear();
  }

  void end_group() {
    group_depth_ = 0;
    group_.series = static_cast<int>(series_.size());
    std::ranges::stable_sort(series_, {}, [](const Series& s) { return s.model.order; });
    for (Series& series : series_) {
      series.model.chart_type = chart_type_of(group_, series.look);
      into_.push_back(std::move(series.model));
    }
    series_.clear();
  }

  std::vector<ChartSeries>& into_;
  std::vector<std::string> path_;  ///< names of the open elements, "" for other vocabularies
  std::size_t plot_depth_ = 0;     ///< depths of open elements, 0 when not inside
  std::size_t group_depth_ = 0;
  std::size_t series_depth_ = 0;
  ChartGroup group_;
  std::vector<Series> series_;
  std::string* sink_ = nullptr;
};

struct ChartFrame {
  std::string name;
  std::string relationship;
};

class DrawingHandler final : public XmlHandler {
 public:
  explicit DrawingHandler(std::vector<ChartFrame>& into) : into_(into) {}

  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    if (space == Space::sheet_drawing && name == "cNvPr") {
      name_ = attributes.text("name");
      decode_escapes(name_);
    } else if (space == Space::chart && name == "chart") {
      into_.push_back({name_, std::string(attributes.relationship())});
    }
  }

 private:
  std::vector<ChartFrame>& into_;
  std::string name_;  ///< of the frame that is being read
};

}  // namespace

std::vector<ChartSeries> read_chart(Package& package, const Package::Part& part) {
  std::vector<ChartSeries> series;
  ChartHandler handler(series);
  PartStream stream = package.open(part);
  read_xml(stream, handler);
  return series;
}

std::vector<ChartModel> read_drawing(Package& package, const Package::Part& part) {
  std::vector<ChartFrame> frames;
  DrawingHandler handler(frames);
  PartStream stream = package.open(part);
  read_xml(stream, handler);
  const Relationships links(package, part.name);
  std::vector<ChartModel> charts;
  for (const ChartFrame& frame : frames) {
    const Relationship* link = links.by_id(frame.relationship);
    const Package::Part* chart = link ? package.find(link->part) : nullptr;
    if (chart) charts.push_back({frame.name, read_chart(package, *chart)});
  }
  return charts;
}

}  // namespace qto::embedded
