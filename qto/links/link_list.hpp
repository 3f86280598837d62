#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qto/automation/object.hpp"
#include "qto/host/workbook.hpp"

namespace qto {

/// The external workbook links of one workbook.
class LinkList : public Object {
 public:
  std::string_view TypeName() const noexcept override { return "LinkList"; }

  /// Stores the workbook and reads its link sources; when the host fails the previous list stays.
  void putref_Workbook(const Ref<host::Workbook>& workbook);
  Ref<host::Workbook> Workbook() const;
  /// Number of links; 0 for a workbook without any.
  std::int32_t CountLinks() const;
  /// The full name of a link source, counted from 1. An index out of range is reported through the
  /// standard error handling and gives "".
  std::string Links(std::int32_t index) const;

 private:
  Ref<host::Workbook> workbook_;
  std::vector<std::string> links_;
};

}  // namespace qto
