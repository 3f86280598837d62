#include "qto/hosts/late_bound/chart_proxies.hpp"

#include "qto/host/host.hpp"

namespace qto::late_bound {

/// An embedded chart lies in a frame on a sheet, a chart sheet in the workbook itself.
Ref<host::Workbook> ChartProxy::Workbook() const {
  Ref<host::HostObject> owner = Parent();
  while (owner && owner->TypeName() != "Workbook" && owner->TypeName() != "Application")
    owner = owner->Parent();
  const auto book = ref_cast<host::Workbook>(owner);
  if (!book) fail_nothing(HostMember::Parent);
  return book;
}

std::vector<Ref<host::Series>> ChartProxy::SeriesCollection() const {
  return items<host::Series>(part(HostMember::SeriesCollection, "SeriesCollection"), "Series");
}

void ChartProxy::SelectChartArea() {
  (void)part(HostMember::ChartArea, "ChartArea").get(HostMember::Select, session());
}

std::string PivotTableProxy::SourceData() const {
  const Variant source = get(HostMember::SourceData);
  if (!source.is_array()) return converted(HostMember::SourceData, source, com::Shape::text).text();
  std::string all;
  for (const Variant& piece : source.array().items())
    all += converted(HostMember::SourceData, piece, com::Shape::text).text();
  return all;
}

}  // namespace qto::late_bound
