#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qto/host/host_object.hpp"

namespace qto::host {

class DefinedName;
class Sheet;
class Worksheet;

/// One open workbook.
class Workbook : public HostObject {
 public:
  std::string_view TypeName() const noexcept final { return "Workbook"; }

  /// File name; folder without trailing separator ("" when never saved); both joined.
  virtual std::string Name() const = 0;
  virtual std::string Path() const = 0;
  virtual std::string FullName() const = 0;

  /// Sheets of every kind and worksheets alone, by name (any letter case) or position from 1.
  virtual Ref<Sheet> find_sheet(std::string_view name) const = 0;          // probe
  virtual Ref<Worksheet> find_worksheet(std::string_view name) const = 0;  // probe
  virtual Ref<Sheet> Sheets(std::string_view name) const = 0;
  virtual Ref<Sheet> Sheets(int position) const = 0;
  virtual int SheetsCount() const = 0;
  virtual Ref<Worksheet> Worksheets(std::string_view name) const = 0;
  virtual Ref<Worksheet> Worksheets(int position) const = 0;
  virtual int WorksheetsCount() const = 0;
  /// A new worksheet at the end; "" takes the next free standard name.
  virtual Ref<Worksheet> AddWorksheet(std::string_view name = {}) = 0;

  /// Probe: a workbook-level name.
  virtual Ref<DefinedName> find_name(std::string_view name) const = 0;
  /// Ordinary form of find_name.
  virtual Ref<DefinedName> Names(std::string_view name) const = 0;
  /// Every name of the workbook, those of its sheets included, in the host's order.
  virtual std::vector<Ref<DefinedName>> AllNames() const = 0;
  /// Defines or redefines a workbook-level name; `refers_to` begins with "=".
  virtual Ref<DefinedName> AddName(std::string_view name, std::string_view refers_to) = 0;

  virtual bool AcceptLabelsInFormulas() const = 0;
  virtual void put_AcceptLabelsInFormulas(bool on) = 0;
  /// Full names of the link sources of a type; empty when there are none.
  virtual std::vector<std::string> LinkSources(std::int32_t type) const = 0;
  /// Takes the protection of the workbook's structure away. A wrong password fails.
  virtual void Unprotect(std::string_view password) = 0;
  virtual void Activate() = 0;
  virtual void Close(bool save_changes) = 0;
  /// Hands an address to the system (mail program, browser).
  virtual void FollowHyperlink(std::string_view address) = 0;
};

}  // namespace qto::host
