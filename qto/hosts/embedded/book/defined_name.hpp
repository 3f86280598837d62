#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qto/hosts/embedded/book/formula_record.hpp"

namespace qto::embedded {

class Sheet;

struct DefinedName {
  std::string name;
  /// Null for a name of the whole workbook.
  const Sheet* sheet = nullptr;
  bool hidden = false;
  /// What it refers to; relative references count from A1.
  std::shared_ptr<const CompiledFormula> refers_to;
};

/// The names of a book. Lookup ignores letter case, costs one hash probe and never fails loudly.
class NameTable {
 public:
  /// Adds a name; false (and nothing changed) when its scope has one of that name already.
  bool add(DefinedName name);
  /// Adds the name or replaces the one of the same scope.
  void set(DefinedName name);
  bool remove(std::string_view name, const Sheet* sheet);
  /// Drops every name of a sheet that goes away.
  void remove_sheet(const Sheet* sheet);

  /// The name in exactly this scope (null: the workbook), or null. Valid until names change.
  const DefinedName* find(std::string_view name, const Sheet* sheet) const;
  /// The name as a formula on `sheet` sees it: the sheet's own first, then the workbook's.
  const DefinedName* resolve(std::string_view name, const Sheet* sheet) const;

  /// All names, in the order in which they were added.
  const std::vector<std::unique_ptr<DefinedName>>& all() const noexcept { return names_; }
  /// Position of a name from 1, as Name.Index gives it.
  int index_of(const DefinedName& name) const noexcept;

 private:
  static std::uint64_t key(std::string_view name, const Sheet* sheet);
  void index_all();

  std::vector<std::unique_ptr<DefinedName>> names_;
  std::unordered_multimap<std::uint64_t, DefinedName*> by_key_;
};

}  // namespace qto::embedded
