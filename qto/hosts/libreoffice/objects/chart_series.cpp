#include "qto/hosts/libreoffice/objects/chart_series.hpp"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/chart2/ScaleData.hpp>
#include <com/sun/star/chart2/XAxis.hpp>
#include <com/sun/star/chart2/XChartDocument.hpp>
#include <com/sun/star/chart2/XChartType.hpp>
#include <com/sun/star/chart2/XChartTypeContainer.hpp>
#include <com/sun/star/chart2/XCoordinateSystem.hpp>
#include <com/sun/star/chart2/XCoordinateSystemContainer.hpp>
#include <com/sun/star/chart2/XDataSeriesContainer.hpp>
#include <com/sun/star/chart2/XDiagram.hpp>
#include <com/sun/star/chart2/data/XDataSource.hpp>
#include <com/sun/star/chart2/data/XTextualDataSequence.hpp>
#include <cstring>

#include "qto/host/range.hpp"
#include "qto/hosts/libreoffice/document/chart_sheet.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

namespace beans = com::sun::star::beans;
namespace chart2 = com::sun::star::chart2;
using Sequence = uno::Reference<chart2::data::XDataSequence>;

/// What a series is made of, references as the suite writes them.
struct SeriesSource {
  OUString name_range;
  OUString name;  ///< what the series is called
  OUString categories;
  OUString values;
  OUString sizes;
  std::int32_t type = 51;
};

OUString range_of(const Sequence& sequence) {
  return sequence.is() ? sequence->getSourceRangeRepresentation() : OUString();
}

OUString text_of(const Sequence& sequence) {
  const uno::Reference<chart2::data::XTextualDataSequence> texts(sequence, uno::UNO_QUERY);
  OUString joined;
  if (texts.is())
    for (const OUString& text : texts->getTextualData())
      joined += (joined.isEmpty() || text.isEmpty() ? OUString() : OUString(" ")) + text;
  return joined;
}

std::int32_t type_of(const OUString& service) {
  struct Row {
    const char* name;
    std::int32_t type;
  };
  static constexpr Row table[] = {{"ColumnChartType", 51},    {"BarChartType", 57},
                                  {"LineChartType", 65},      {"AreaChartType", 1},
                                  {"PieChartType", 5},        {"ScatterChartType", -4169},
                                  {"BubbleChartType", 15},    {"NetChartType", -4151},
                                  {"FilledNetChartType", 82}, {"CandleStickChartType", 88}};
  for (const Row& row : table)
    if (service.endsWithAsciiL(row.name, static_cast<sal_Int32>(std::strlen(row.name))))
      return row.type;
  return 51;
}

SeriesSource read_source(const uno::Reference<chart2::XDataSeries>& series) {
  SeriesSource source;
  const uno::Reference<chart2::data::XDataSource> data(series, uno::UNO_QUERY_THROW);
  for (const auto& labeled : data->getDataSequences()) {
    const Sequence values = labeled->getValues();
    if (!values.is()) continue;
    OUString role;
    uno::Reference<beans::XPropertySet>(values, uno::UNO_QUERY_THROW)->getPropertyValue("Role") >>=
        role;
    const Sequence label = labeled->getLabel();
    if (label.is() && source.name.isEmpty()) {
      source.name_range = range_of(label);
      source.name = text_of(label);
    }
    if (role == "values-x")
      source.categories = range_of(values);
    else if (role == "values-size")
      source.sizes = range_of(values);
    else if (source.values.isEmpty() || role == "values-y")
      source.values = range_of(values);
  }
  return source;
}

OUString categories_of(const uno::Reference<chart2::XCoordinateSystem>& system) {
  const uno::Reference<chart2::XAxis> axis = system->getAxisByDimension(0, 0);
  if (!axis.is()) return {};
  const auto categories = axis->getScaleData().Categories;
  return categories.is() ? range_of(categories->getValues()) : OUString();
}

std::vector<SeriesSource> read_sources(const ChartPlace& place) {
  std::vector<SeriesSource> sources;
  const auto shapes = chart_shapes(place.sheet().sheet);
  if (place.position >= std::ssize(shapes)) return sources;
  uno::Reference<chart2::XChartDocument> chart;
  uno::Reference<beans::XPropertySet>(shapes[place.position], uno::UNO_QUERY_THROW)
      ->getPropertyValue("Model") >>= chart;
  if (!chart.is()) return sources;
  const uno::Reference<chart2::XCoordinateSystemContainer> diagram(chart->getFirstDiagram(),
                                                                   uno::UNO_QUERY);
  if (!diagram.is()) return sources;
  for (const auto& system : diagram->getCoordinateSystems()) {
    const OUString categories = categories_of(system);
    const uno::Reference<chart2::XChartTypeContainer> types(system, uno::UNO_QUERY_THROW);
    for (const auto& type : types->getChartTypes()) {
      const uno::Reference<chart2::XDataSeriesContainer> container(type, uno::UNO_QUERY);
      if (!container.is()) continue;
      for (const auto& series : container->getDataSeries()) {
        SeriesSource source = read_source(series);
        source.type = type_of(type->getChartType());
        if (source.categories.isEmpty()) source.categories = categories;
        sources.push_back(std::move(source));
      }
    }
  }
  return sources;
}

class SeriesObject final : public host::Series {
 public:
  SeriesObject(ChartPlace chart, int position, SeriesSource source)
      : chart_(std::move(chart)), position_(position), source_(std::move(source)) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return chart_.exists(); }
  std::string Name() const override;
  std::string Formula() const override;
  std::string FormulaLocal() const override { return Formula(); }
  std::string FormulaR1C1Local() const override;
  std::int32_t ChartType() const override { return source_.type; }
  void Select() override { chart_.select(position_); }

 private:
  Ref<host::Application> application() const override { return chart_.application(); }
  std::string reference(const OUString& range) const;

  ChartPlace chart_;
  int position_;
  SeriesSource source_;
};

Ref<host::HostObject> SeriesObject::Parent() const {
  SheetSlot& slot = chart_.sheet();
  if (slot.is_chart) return chart_.owner().handle(slot);
  return chart_objects(chart_.workbook, slot)[static_cast<std::size_t>(chart_.position)]->Chart();
}

std::string SeriesObject::Name() const {
  return source_.name.isEmpty() ? "Series" + std::to_string(position_ + 1) : utf8(source_.name);
}

std::string SeriesObject::reference(const OUString& range) const {
  if (range.isEmpty()) return "";
  SheetSlot& slot = chart_.sheet();
  const std::string text = slot.document->engine_text(range, slot, {});
  // Several blocks stand in parentheses.
  return text.find(',') == std::string::npos ? text : "(" + text + ")";
}

std::string SeriesObject::Formula() const {
  std::string name = reference(source_.name_range);
  if (name.empty() && !source_.name.isEmpty()) name = "\"" + utf8(source_.name) + "\"";
  std::string out = "=SERIES(" + name + "," + reference(source_.categories) + "," +
                    reference(source_.values) + "," + std::to_string(position_ + 1);
  if (!source_.sizes.isEmpty()) out += "," + reference(source_.sizes);
  return out + ")";
}

std::string SeriesObject::FormulaR1C1Local() const {
  return Application()->ConvertFormula(Formula(), host::xlA1, host::xlR1C1, nullptr);
}

}  // namespace

std::vector<Ref<host::Series>> series_of(const ChartPlace& place) {
  return guarded("Reading a chart's series", [&] {
    std::vector<Ref<host::Series>> list;
    int position = 0;
    for (SeriesSource& source : read_sources(place)) {
      list.push_back(make_ref<SeriesObject>(place, position, std::move(source)));
      ++position;
    }
    return list;
  });
}

}  // namespace qto::libreoffice
