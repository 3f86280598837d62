#include "qto/hosts/embedded/book/defined_name.hpp"

#include <algorithm>
#include <functional>

#include "qto/automation/text.hpp"

namespace qto::embedded {

std::uint64_t NameTable::key(std::string_view name, const Sheet* sheet) {
  return text::hash_fold(name) ^ (std::hash<const void*>()(sheet) * 0x9e3779b97f4a7c15u);
}

const DefinedName* NameTable::find(std::string_view name, const Sheet* sheet) const {
  if (names_.empty() || name.empty()) return nullptr;
  const auto [begin, end] = by_key_.equal_range(key(name, sheet));
  for (auto it = begin; it != end; ++it)
    if (it->second->sheet == sheet && text::equal_fold(it->second->name, name)) return it->second;
  return nullptr;
}

const DefinedName* NameTable::resolve(std::string_view name, const Sheet* sheet) const {
  const DefinedName* own = sheet ? find(name, sheet) : nullptr;
  return own ? own : find(name, nullptr);
}

bool NameTable::add(DefinedName name) {
  if (find(name.name, name.sheet)) return false;
  const std::uint64_t k = key(name.name, name.sheet);
  names_.push_back(std::make_unique<DefinedName>(std::move(name)));
  by_key_.emplace(k, names_.back().get());
  return true;
}

void NameTable::set(DefinedName name) {
  remove(name.name, name.sheet);
  add(std::move(name));
}

bool NameTable::remove(std::string_view name, const Sheet* sheet) {
  const DefinedName* found = find(name, sheet);
  if (!found) return false;
  std::erase_if(names_, [found](const auto& entry) { return entry.get() == found; });
  index_all();
  return true;
}

void NameTable::remove_sheet(const Sheet* sheet) {
  std::erase_if(names_, [sheet](const auto& entry) { return entry->sheet == sheet; });
  index_all();
}

void NameTable::index_all() {
  by_key_.clear();
  for (const auto& entry : names_) by_key_.emplace(key(entry->name, entry->sheet), entry.get());
}

int NameTable::index_of(const DefinedName& name) const noexcept {
  const auto found = std::find_if(names_.begin(), names_.end(),
                                  [&name](const auto& entry) { return entry.get() == &name; });
  return found == names_.end() ? 0 : static_cast<int>(found - names_.begin()) + 1;
}

}  // namespace qto::embedded
