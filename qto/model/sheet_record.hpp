#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "qto/automation/ref.hpp"
#include "qto/host/workbook.hpp"
#include "qto/host/worksheet.hpp"
#include "qto/links/context.hpp"

namespace qto {

/// What all cell parts of one sheet have in common, read from the host once for all of them.
struct SheetRecord : RefCounted {
  /// Reads name, workbook and the kind of location of a sheet. The context is that of the drill;
  /// none for a part that a client makes.
  SheetRecord(const Ref<host::Worksheet>& worksheet, Ref<Context> context);

  Ref<Context> context;
  Ref<host::Worksheet> sheet;
  Ref<host::Workbook> workbook;
  std::string name;
  /// Name and folder of the workbook.
  std::string book_name, book_path;
  bool local_file = false;
  /// The host's identity stamp when the record was made; 0: the host has none.
  std::uint64_t stamp = 0;
  /// PartKey::prefix_number of prefix_text().
  std::uint32_t prefix = 0;
  /// A text to read formulas into; its memory serves one after the other.
  std::unique_ptr<std::string> scratch;

  /// 'folder\[book]sheet'!, with which the unique keys of the sheet's cells begin.
  std::string prefix_text() const;
};

}  // namespace qto
