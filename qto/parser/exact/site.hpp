#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qto/automation/address.hpp"
#include "qto/automation/enumerations.hpp"
#include "qto/host/defined_name.hpp"
#include "qto/host/workbook.hpp"
#include "qto/model/sheet_record.hpp"

namespace qto::exact {

/// Where the formula stands that is read.
struct Site {
  Ref<host::Workbook> workbook;
  /// Of references without a sheet; null for a name of a workbook that no cell uses.
  Ref<SheetRecord> sheet;
  /// What relative references and implicit intersections count from.
  CellPos cell;
};

/// A workbook that is not open, and what was written behind it.
struct ClosedPlace {
  std::string path;  ///< as written, with its last separator
  std::string book;
  std::string sheet;  ///< "" for a workbook-level name; "First:Last" for a span
};

/// What the reader asks of the parser, and what it hands to it: the precedents of a formula in the
/// order in which they stand.
class Surroundings {
 public:
  virtual ~Surroundings() = default;

  /// Probe: the open workbook of that name; one that a drill has opened is opened again.
  virtual Ref<host::Workbook> find_book(std::string_view path, std::string_view book) = 0;
  virtual Ref<SheetRecord> record_of(const Ref<host::Worksheet>& sheet) = 0;

  virtual void add_area(const Ref<SheetRecord>& sheet, const Rect& rect) = 0;
  virtual void add_name(const Ref<host::DefinedName>& name, std::string_view text) = 0;
  virtual void add_unknown_area(const ClosedPlace& place, std::string_view address) = 0;
  virtual void add_unknown_name(const ClosedPlace& place, std::string_view name) = 0;
  virtual void add_link(std::string_view application, std::string_view document,
                        std::string_view item) = 0;
  virtual void add_constant(qtoContainsConstant kind) = 0;
  /// Something that a reader of the answer has to know about this formula.
  virtual void remark(std::string_view text) = 0;
  /// The formula calls a function that reads cells which it does not show.
  virtual void opaque_call(std::string_view function) = 0;
};

}  // namespace qto::exact
