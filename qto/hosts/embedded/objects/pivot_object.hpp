#pragma once

#include "qto/host/pivot_table.hpp"
#include "qto/hosts/embedded/objects/worksheet_object.hpp"

namespace qto::embedded {

class PivotObject final : public host::PivotTable {
 public:
  /// `position` into Sheet::pivots.
  PivotObject(Ref<WorksheetObject> sheet, int position)
      : sheet_(std::move(sheet)), position_(position) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return sheet_->exists(); }
  std::string Name() const override;
  Ref<host::Range> TableRange2() const override;
  std::string SourceData() const override;

 private:
  Ref<host::Application> application() const override { return sheet_->Application(); }
  const PivotModel& model() const { return sheet_->sheet().pivots[position_]; }

  Ref<WorksheetObject> sheet_;
  int position_;
};

}  // namespace qto::embedded
