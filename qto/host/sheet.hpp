#pragma once

#include <string>
#include <string_view>

#include "qto/host/constants.hpp"
#include "qto/host/host_object.hpp"

namespace qto::host {

class Workbook;

/// A sheet of any kind: a worksheet or a chart sheet.
class Sheet : public HostObject {
 public:
  virtual std::string Name() const = 0;
  /// Position among all sheets of the workbook, from 1.
  virtual int Index() const = 0;
  /// The workbook that the sheet belongs to.
  virtual Ref<host::Workbook> Workbook() const = 0;
  virtual std::int32_t Visible() const = 0;
  virtual void put_Visible(std::int32_t visibility) = 0;
  virtual void Unprotect(std::string_view password) = 0;
  virtual void Select() = 0;
  virtual void Activate() = 0;
};

}  // namespace qto::host
