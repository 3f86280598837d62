#include "qto/host/host_object.hpp"

#include "qto/host/application.hpp"
#include "qto/host/range.hpp"
#include "qto/host/worksheet.hpp"

namespace qto::host {

Ref<host::Application> HostObject::Application() const { return application(); }

Variant Worksheet::value_in_cell(CellPos, std::string_view piece) const {
  const Variant result = Evaluate(piece);
  const auto range = ref_cast<host::Range>(result.object());
  return range ? range->value() : result;
}

Variant Worksheet::elements_in_cell(CellPos cell, std::string_view piece, bool over_ranges) const {
  return over_ranges ? Worksheet::value_in_cell(cell, piece) : value_in_cell(cell, piece);
}

Ref<host::Range> Worksheet::range_in_cell(CellPos, std::string_view piece) const {
  return ref_cast<host::Range>(Evaluate(piece).object());
}

}  // namespace qto::host
