#pragma once

#include <com/sun/star/sheet/XNamedRange.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qto/hosts/libreoffice/document/sheet_slot.hpp"

namespace qto::libreoffice {

/// A defined name of a book or of one of its sheets.
struct NameEntry {
  std::string name;
  SheetSlot* scope = nullptr;  ///< null: of the book
  bool hidden = false;
  bool relative = false;  ///< what it refers to depends on the cell that uses it
  std::string refers_to;  ///< in the engine's form, without "="; of a relative name seen from A1
  SheetSlot* sheet = nullptr;  ///< set when it refers to exactly one fixed block of this sheet
  Rect block;
  uno::Reference<sheet::XNamedRange> range;
};

/// All names of a document, those of its sheets after those of the book.
class Names {
 public:
  void add(NameEntry entry);
  const std::vector<NameEntry>& all() const noexcept { return all_; }
  /// In this scope alone; letter case ignored.
  const NameEntry* find(std::string_view name, const SheetSlot* scope) const;
  /// As a formula on the sheet sees it.
  const NameEntry* resolve(std::string_view name, const SheetSlot* sheet) const;
  /// The first visible name that refers to exactly this block.
  const NameEntry* of_block(const SheetSlot& sheet, const Rect& block) const;

 private:
  std::vector<NameEntry> all_;
  std::unordered_multimap<std::string, std::size_t> by_name_;  // folded
};

}  // namespace qto::libreoffice
