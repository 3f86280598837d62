#pragma once

#include <com/sun/star/sheet/XDataPilotTable.hpp>

#include "qto/host/pivot_table.hpp"
#include "qto/hosts/libreoffice/objects/worksheet_object.hpp"

namespace qto::libreoffice {

class PivotObject final : public host::PivotTable {
 public:
  PivotObject(Ref<WorksheetObject> sheet, const uno::Reference<sheet::XDataPilotTable>& table)
      : sheet_(std::move(sheet)), table_(table) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return sheet_->exists(); }
  std::string Name() const override;
  Ref<host::Range> TableRange2() const override;
  std::string SourceData() const override;

 private:
  Ref<host::Application> application() const override { return sheet_->Application(); }

  Ref<WorksheetObject> sheet_;
  uno::Reference<sheet::XDataPilotTable> table_;
};

std::vector<Ref<host::PivotTable>> pivot_tables(const Ref<WorksheetObject>& sheet);

}  // namespace qto::libreoffice
