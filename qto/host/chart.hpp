#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qto/host/host_object.hpp"
#include "qto/host/sheet.hpp"

namespace qto::host {

class Chart;

/// One data series of a chart.
class Series : public HostObject {
 public:
  std::string_view TypeName() const noexcept final { return "Series"; }
  virtual std::string Name() const = 0;
  /// =SERIES(name,categories,values,order)
  virtual std::string Formula() const = 0;
  virtual std::string FormulaLocal() const = 0;
  virtual std::string FormulaR1C1Local() const = 0;
  virtual std::int32_t ChartType() const = 0;
  virtual void Select() = 0;
};

/// A chart: embedded (its parent is a chart object) or a chart sheet (its parent is the workbook).
class Chart : public Sheet {
 public:
  std::string_view TypeName() const noexcept final { return "Chart"; }
  virtual std::vector<Ref<Series>> SeriesCollection() const = 0;
  /// Selects the whole chart.
  virtual void SelectChartArea() = 0;
};

/// The container of an embedded chart on a worksheet.
class ChartObject : public HostObject {
 public:
  std::string_view TypeName() const noexcept final { return "ChartObject"; }
  virtual std::string Name() const = 0;
  virtual Ref<host::Chart> Chart() const = 0;
  virtual void Activate() = 0;
};

}  // namespace qto::host
