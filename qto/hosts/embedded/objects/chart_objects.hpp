#pragma once

#include "qto/hosts/embedded/objects/chart_place.hpp"
#include "qto/hosts/embedded/objects/worksheet_object.hpp"

namespace qto::embedded {

/// The handle of a chart sheet; there is one per sheet while somebody holds it.
class ChartSheetObject final : public host::Chart {
 public:
  ChartSheetObject(Ref<WorkbookObject> workbook, SheetSlot& slot);
  ~ChartSheetObject() override;

  Ref<host::HostObject> Parent() const override { return Workbook(); }
  bool exists() const noexcept override { return place_.exists(); }
  std::string Name() const override;
  int Index() const override;
  Ref<host::Workbook> Workbook() const override;
  std::int32_t Visible() const override;
  void put_Visible(std::int32_t visibility) override;
  void Unprotect(std::string_view password) override;
  void Select() override;
  void Activate() override;
  std::vector<Ref<host::Series>> SeriesCollection() const override { return place_.series(); }
  void SelectChartArea() override { place_.select(); }

 private:
  Ref<host::Application> application() const override { return place_.application(); }

  ChartPlace place_;
};

/// A chart that lies on a worksheet. What it shares with sheets it answers for its worksheet; it
/// has no position among the sheets.
class EmbeddedChartObject final : public host::Chart {
 public:
  explicit EmbeddedChartObject(ChartPlace place) : place_(std::move(place)) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return place_.exists(); }
  /// Sheet name, a space and the chart object's name.
  std::string Name() const override;
  int Index() const override;
  Ref<host::Workbook> Workbook() const override;
  std::int32_t Visible() const override;
  void put_Visible(std::int32_t visibility) override;
  void Unprotect(std::string_view password) override;
  void Select() override { place_.select(); }
  void Activate() override { place_.select(); }
  std::vector<Ref<host::Series>> SeriesCollection() const override { return place_.series(); }
  void SelectChartArea() override { place_.select(); }

 private:
  Ref<host::Application> application() const override { return place_.application(); }

  ChartPlace place_;
};

/// The chart object that holds an embedded chart.
class ChartFrameObject final : public host::ChartObject {
 public:
  explicit ChartFrameObject(ChartPlace place) : place_(std::move(place)) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return place_.exists(); }
  std::string Name() const override;
  Ref<host::Chart> Chart() const override;
  void Activate() override { place_.select(); }

 private:
  Ref<host::Application> application() const override { return place_.application(); }

  ChartPlace place_;
};

}  // namespace qto::embedded
