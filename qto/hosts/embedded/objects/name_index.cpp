#include "qto/hosts/embedded/objects/name_index.hpp"

#include "qto/hosts/embedded/formulas/compiled_formula.hpp"

namespace qto::embedded {
namespace {

bool is_fixed(const formula::AreaRef& area) noexcept {
  return area.first_row.absolute && area.first_column.absolute && area.last_row.absolute &&
         area.last_column.absolute;
}

/// The written block that is all the name refers to, and its sheet; null for any other name.
const formula::AreaRef* sole_area(const Book& book, const DefinedName& name, const Sheet*& sheet) {
  const formula::SyntaxTree* tree = name.refers_to ? name.refers_to->tree() : nullptr;
  if (!tree || tree->root == formula::no_node) return nullptr;
  const formula::Node& root = tree->at(tree->root);
  if (root.kind != formula::NodeKind::area) return nullptr;
  const formula::SheetQualifier& qualifier = tree->qualifiers[root.qualifier];
  sheet = name.sheet;
  if (qualifier.present()) {
    const bool own = qualifier.external == 0 && qualifier.book.empty() && !qualifier.broken &&
                     qualifier.last_sheet.empty();
    sheet = own ? book.find_sheet(qualifier.sheet) : nullptr;
  }
  return sheet ? &tree->areas[root.payload] : nullptr;
}

}  // namespace

std::uint64_t NameIndex::key(const Sheet& sheet, const Rect& block) noexcept {
  std::uint64_t hash = reinterpret_cast<std::uintptr_t>(&sheet);
  for (const std::int32_t part :
       {block.first.row, block.first.column, block.last.row, block.last.column})
    hash = (hash ^ static_cast<std::uint32_t>(part)) * 0x9e3779b97f4a7c15u;
  return hash;
}

void NameIndex::rebuild(const Book& book) {
  fixed_.clear();
  relative_.clear();
  serial_ = book.serial();
  int position = 0;
  for (const auto& name : book.names.all()) {
    const int own_position = position++;
    const Sheet* sheet = nullptr;
    const formula::AreaRef* area = name->hidden ? nullptr : sole_area(book, *name, sheet);
    if (!area) continue;
    if (!is_fixed(*area)) {
      relative_.push_back({sheet, area, own_position});
      continue;
    }
    const Rect block = area->resolve({});
    fixed_.emplace(key(*sheet, block), Entry{sheet, block, own_position});
  }
}

const DefinedName* NameIndex::find(const Book& book, const Sheet& sheet, const Rect& block,
                                   CellPos active) {
  if (book.names.all().empty()) return nullptr;
  if (serial_ != book.serial()) rebuild(book);
  int best = -1;
  const auto offer = [&best](int position) {
    if (best < 0 || position < best) best = position;
  };
  const auto [begin, end] = fixed_.equal_range(key(sheet, block));
  for (auto it = begin; it != end; ++it)
    if (it->second.sheet == &sheet && it->second.block == block) offer(it->second.position);
  for (const RelativeName& name : relative_)
    if (name.sheet == &sheet && name.area->resolve(active) == block) offer(name.position);
  return best < 0 ? nullptr : book.names.all()[best].get();
}

}  // namespace qto::embedded
