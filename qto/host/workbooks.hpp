#pragma once

#include <optional>
#include <string_view>

#include "qto/host/host_object.hpp"

namespace qto::host {

class Workbook;

/// The open workbooks.
class Workbooks : public HostObject {
 public:
  std::string_view TypeName() const noexcept final { return "Workbooks"; }

  /// Probe: the open workbook of that name (without folder, any letter case), or null.
  virtual Ref<Workbook> find(std::string_view name) const = 0;
  /// Probe by position from 1.
  virtual Ref<Workbook> find(int position) const = 0;
  /// Ordinary forms.
  virtual Ref<Workbook> Item(std::string_view name) const = 0;
  virtual Ref<Workbook> Item(int position) const = 0;
  virtual int Count() const = 0;
  /// Opens a file. Throws HostFailure when it is missing, no workbook, damaged, refused, or needs
  /// another password.
  virtual Ref<Workbook> Open(std::string_view file_name, std::optional<bool> update_links = {},
                             bool read_only = false, std::string_view password = {}) = 0;
  /// A new workbook with one empty worksheet.
  virtual Ref<Workbook> Add() = 0;
};

}  // namespace qto::host
