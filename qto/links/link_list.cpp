#include "qto/links/link_list.hpp"

#include "qto/automation/collection_error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"

namespace qto {

void LinkList::putref_Workbook(const Ref<host::Workbook>& workbook) {
  Procedure proc("LinkList", "Workbook[Set]");
  workbook_ = workbook;
  // When that fails the previous list stays.
  (void)host::tried([&] {
    if (workbook_) links_ = workbook_->LinkSources(host::link_type_workbooks);
  });
}

Ref<host::Workbook> LinkList::Workbook() const {
  Procedure proc("LinkList", "Workbook[Get]");
  return workbook_;
}

std::int32_t LinkList::CountLinks() const {
  Procedure proc("LinkList", "CountLinks[Get]");
  return static_cast<std::int32_t>(links_.size());
}

std::string LinkList::Links(std::int32_t index) const {
  Procedure proc("LinkList", "Links[Get]");
  std::string link;
  (void)proc.step([&] {
    if (index < 1 || index > static_cast<std::int32_t>(links_.size())) throw_no_such_item();
    link = links_[static_cast<std::size_t>(index) - 1];
  });
  return link;
}

}  // namespace qto
