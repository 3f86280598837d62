#include "qto/hosts/libreoffice/document/names.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"

namespace qto::libreoffice {

void Names::add(NameEntry entry) {
  by_name_.emplace(text::fold_case(entry.name), all_.size());
  all_.push_back(std::move(entry));
}

const NameEntry* Names::find(std::string_view name, const SheetSlot* scope) const {
  const auto [first, last] = by_name_.equal_range(text::fold_case(name));
  for (auto it = first; it != last; ++it)
    if (all_[it->second].scope == scope) return &all_[it->second];
  return nullptr;
}

const NameEntry* Names::resolve(std::string_view name, const SheetSlot* sheet) const {
  const NameEntry* own = sheet ? find(name, sheet) : nullptr;
  return own ? own : find(name, nullptr);
}

const NameEntry* Names::of_block(const SheetSlot& sheet, const Rect& block) const {
  const auto found = std::find_if(all_.begin(), all_.end(), [&](const NameEntry& entry) {
    return !entry.hidden && entry.sheet == &sheet && entry.block == block;
  });
  return found == all_.end() ? nullptr : &*found;
}

}  // namespace qto::libreoffice
