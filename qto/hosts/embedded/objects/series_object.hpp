#pragma once

#include "qto/hosts/embedded/objects/chart_place.hpp"

namespace qto::embedded {

class SeriesObject final : public host::Series {
 public:
  /// `position` into ChartModel::series.
  SeriesObject(ChartPlace chart, int position) : chart_(std::move(chart)), position_(position) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return chart_.exists(); }
  std::string Name() const override;
  std::string Formula() const override;
  std::string FormulaLocal() const override;
  std::string FormulaR1C1Local() const override;
  std::int32_t ChartType() const override;
  void Select() override;

 private:
  Ref<host::Application> application() const override { return chart_.application(); }
  const ChartSeries& model() const;

  ChartPlace chart_;
  int position_;
};

}  // namespace qto::embedded
