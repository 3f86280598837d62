#pragma once

#include "qto/hosts/embedded/objects/chart_place.hpp"

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

}  // namespace qto::embedded
