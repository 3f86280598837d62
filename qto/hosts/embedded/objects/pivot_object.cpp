#include "qto/hosts/embedded/objects/pivot_object.hpp"

#include "qto/host/range.hpp"

namespace qto::embedded {

Ref<host::HostObject> PivotObject::Parent() const {
  sheet_->sheet();
  return sheet_;
}

std::string PivotObject::Name() const { return model().name; }

Ref<host::Range> PivotObject::TableRange2() const { return sheet_->Block(model().table_range); }

std::string PivotObject::SourceData() const { return model().source; }

}  // namespace qto::embedded
