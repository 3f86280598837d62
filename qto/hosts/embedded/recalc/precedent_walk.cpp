#include "qto/hosts/embedded/recalc/precedent_walk.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/formulas/table_target.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"

namespace qto::embedded {

PrecedentWalk::PrecedentWalk(const Book& book, const Sheet& sheet, const OpenBooks* open)
    : book_(book), sheet_(sheet), open_(open), functions_(functions::registry()) {}

PrecedentWalk::Part PrecedentWalk::Part::child(formula::NodeIndex index, Use child_use) const {
  Part part = *this;
  part.node = index;
  part.use = child_use;
  return part;
}

PrecedentList PrecedentWalk::run(const FormulaRecord& record) {
  const formula::SyntaxTree* tree = record.compiled ? record.compiled->tree() : nullptr;
  if (!tree || record.kind == FormulaKind::data_table) return {};
  const bool array = record.kind == FormulaKind::array;
  push({tree, tree->root, &book_, nullptr, array ? Use::full : Use::single, array});
  while (!work_.empty()) {
    const Part part = work_.back();
    work_.pop_back();
    visit(part);
  }
  return std::move(list_);
}

void PrecedentWalk::visit(const Part& part) {
  switch (part.at().kind) {
    case formula::NodeKind::area:
      return visit_area(part);
    case formula::NodeKind::structured:
      return visit_structured(part);
    case formula::NodeKind::name:
      return visit_name(part);
    case formula::NodeKind::unary:
      return visit_unary(part);
    case formula::NodeKind::binary:
      return visit_binary(part);
    case formula::NodeKind::call:
      return visit_call(part);
    case formula::NodeKind::invoke:
      return visit_invocation(part);
    default:
      return;
  }
}

void PrecedentWalk::add(const formula::AreaRef& area, Sheet* sheet, Use use) {
  if (use == Use::address) return;
  Precedent item;
  item.area = area;
  item.sheet = sheet;
  item.implicit = use == Use::single && area.shape != AreaShape::cell;
  item.watched_only = use == Use::watched;
  list_.items.push_back(item);
}

const Book* PrecedentWalk::book_of(const Part& part,
                                   const formula::SheetQualifier& qualifier) const {
  if (qualifier.external > 0) {
    const auto& links = part.book->externals;
    if (qualifier.external > links.size()) return nullptr;
    const ExternalBook& link = links[qualifier.external - 1];
    if (link.kind == ExternalBook::Kind::self) return part.book;
    const bool workbook = link.kind == ExternalBook::Kind::workbook;
    return workbook && open_ ? open_->find(link.name) : nullptr;
  }
  if (qualifier.book.empty() || text::equal_fold(qualifier.book, part.book->name)) return part.book;
  return open_ ? open_->find(qualifier.book) : nullptr;
}

void PrecedentWalk::note_unreachable(const Part& part, const formula::SheetQualifier& qualifier) {
  const auto& links = part.book->externals;
  if (qualifier.external > links.size()) return;
  const auto link = qualifier.external > 0
                        ? links.begin() + (qualifier.external - 1)
                        : std::find_if(links.begin(), links.end(), [&](const ExternalBook& other) {
                            return text::equal_fold(other.name, qualifier.book);
                          });
  const bool remembered = link != links.end() && link->kind == ExternalBook::Kind::workbook &&
                          (qualifier.sheet.empty() || link->remembers(qualifier.sheet));
  if (!remembered) list_.cannot_evaluate = true;
}

void PrecedentWalk::visit_area(const Part& part) {
  const formula::SheetQualifier& qualifier = part.tree->qualifiers[part.at().qualifier];
  const formula::AreaRef& area = part.tree->areas[part.at().payload];
  if (qualifier.broken) return;
  if (!qualifier.present()) return add(area, part.sheet, part.use);
  const Book* book = book_of(part, qualifier);
  if (!book) return note_unreachable(part, qualifier);
  if (!qualifier.last_sheet.empty()) return add_span(part, qualifier, *book);
  if (Sheet* sheet = book->find_sheet(qualifier.sheet)) add(area, sheet, part.use);
}

void PrecedentWalk::add_span(const Part& part, const formula::SheetQualifier& qualifier,
                             const Book& book) {
  const Sheet* first = book.find_sheet(qualifier.sheet);
  const Sheet* last = book.find_sheet(qualifier.last_sheet);
  if (!first || !last) return;
  const auto [from, to] = std::minmax({book.index_of(*first), book.index_of(*last)});
  const Use use = part.use == Use::single ? Use::full : part.use;
  for (int i = from; i <= to; ++i)
    add(part.tree->areas[part.at().payload], book.sheets()[i].get(), use);
}

void PrecedentWalk::visit_structured(const Part& part) {
  if (part.use == Use::address) return;
  const formula::SheetQualifier& qualifier = part.tree->qualifiers[part.at().qualifier];
  const Book* book = book_of(part, qualifier);
  if (!book) return note_unreachable(part, qualifier);
  const formula::StructuredRef& ref = part.tree->structured[part.at().payload];
  Precedent item;
  item.implicit = part.use == Use::single;
  item.watched_only = part.use == Use::watched;
  if (book == &book_ && (ref.table.empty() || (ref.items & formula::StructuredRef::this_row))) {
    item.structured = &ref;
    list_.items.push_back(item);
    return;
  }
  const StructuredTarget target = resolve_structured(ref, *book, sheet_, CellPos{});
  if (target.error) return;
  item.sheet = book->find_sheet(target.table->sheet->name);
  item.area = {{target.rect.first.row, true},
               {target.rect.first.column, true},
               {target.rect.last.row, true},
               {target.rect.last.column, true},
               AreaShape::area};
  list_.items.push_back(item);
}

/// The name that a node stands for, and what it refers to as a part of its own.
const DefinedName* PrecedentWalk::find_name(const Part& part, Part& target) const {
  const std::string& name = part.tree->texts[part.at().payload];
  const formula::SheetQualifier& qualifier = part.tree->qualifiers[part.at().qualifier];
  if (qualifier.broken || is_local(part, name)) return nullptr;
  target = part;
  target.book = book_of(part, qualifier);
  if (!target.book) return nullptr;
  if (!qualifier.sheet.empty()) {
    target.sheet = target.book->find_sheet(qualifier.sheet);
    if (!target.sheet) return nullptr;
  } else if (target.book != part.book) {
    if (target.book->sheets().empty()) return nullptr;
    target.sheet = target.book->sheets().front().get();
  }
  const Sheet* scope = target.sheet ? target.sheet : &sheet_;
  const DefinedName* found = target.book->names.resolve(name, scope);
  const formula::SyntaxTree* tree = found && found->refers_to ? found->refers_to->tree() : nullptr;
  if (!tree) return nullptr;
  target.tree = tree;
  target.node = tree->root;
  target.array = true;  // names calculate as array formulas do
  return found;
}

void PrecedentWalk::visit_name(const Part& part) {
  Part target;
  if (const DefinedName* name = find_name(part, target)) {
    if (names_seen_.insert({name, part.use}).second) push(target);
    return;
  }
  const formula::SheetQualifier& qualifier = part.tree->qualifiers[part.at().qualifier];
  const Book* book = book_of(part, qualifier);
  if (!book) return note_unreachable(part, qualifier);
  // A table's name alone stands for its data.
  const std::string& text = part.tree->texts[part.at().payload];
  const Table* table = !is_local(part, text) ? book->find_table(text) : nullptr;
  const auto data = table ? table->data() : std::nullopt;
  if (!data) return;
  add({{data->first.row, true},
       {data->first.column, true},
       {data->last.row, true},
       {data->last.column, true},
       AreaShape::area},
      book->find_sheet(table->sheet->name), part.use);
}

void PrecedentWalk::visit_unary(const Part& part) {
  const formula::NodeIndex operand = part.at().first_child;
  const formula::NodeKind kind = part.tree->at(operand).kind;
  const bool reference = kind == formula::NodeKind::area || kind == formula::NodeKind::name ||
                         kind == formula::NodeKind::structured;
  switch (part.at().op) {
    case formula::Operator::plus:
      return push(part.child(operand, part.use));
    case formula::Operator::intersection_implicit:
      if (!reference || part.use == Use::address) return push(part.child(operand, part.use));
      return push(part.child(operand, Use::single));
    case formula::Operator::spill: {
      // The block hangs on its first cell: who waits for that waits for all of it.
      return push(part.child(operand, part.use == Use::single ? Use::full : part.use));
    }
    default:
      return push(part.child(operand, part.value_use()));
  }
}

void PrecedentWalk::visit_binary(const Part& part) {
  const formula::Node& node = part.at();
  if (node.op == formula::Operator::range) return visit_range(part);
  if (node.op == formula::Operator::intersect) return visit_intersection(part);
  const Use use = node.op == formula::Operator::unite ? part.use : part.value_use();
  push(part.child(part.tree->at(node.first_child).next, use));
  push(part.child(node.first_child, use));
}

/// The written block that a part is, followed through names; nothing for anything else.
std::optional<PrecedentWalk::Leaf> PrecedentWalk::leaf(Part part) const {
  constexpr int longest_chain = 16;
  for (int steps = 0; part.at().kind == formula::NodeKind::name; ++steps) {
    Part target;
    if (steps == longest_chain || !find_name(part, target)) return std::nullopt;
    part = target;
  }
  if (part.at().kind != formula::NodeKind::area) return std::nullopt;
  const formula::SheetQualifier& qualifier = part.tree->qualifiers[part.at().qualifier];
  Leaf found{part.tree->areas[part.at().payload], part.sheet};
  if (!qualifier.present()) return found;
  const Book* book = qualifier.broken ? nullptr : book_of(part, qualifier);
  found.sheet = book && qualifier.last_sheet.empty() ? book->find_sheet(qualifier.sheet) : nullptr;
  if (!found.sheet) return std::nullopt;
  return found;
}

void PrecedentWalk::visit_range(const Part& part) {
  const formula::NodeIndex left = part.at().first_child;
  const formula::NodeIndex right = part.tree->at(left).next;
  const auto first = leaf(part.child(left, part.use));
  const auto last = leaf(part.child(right, part.use));
  if (first && last && first->sheet == last->sheet && first->area.shape == AreaShape::cell &&
      last->area.shape == AreaShape::cell) {
    formula::AreaRef area = first->area;
    area.last_row = last->area.first_row;
    area.last_column = last->area.first_column;
    area.shape = AreaShape::area;
    return add(area, first->sheet, part.use);
  }
  // What lies between turns out in evaluation.
  list_.is_volatile = true;
  const Use use = part.use == Use::single ? Use::full : part.use;
  const Use unknown = part.use == Use::address ? Use::address : Use::watched;
  push(part.child(right, last ? use : unknown));
  push(part.child(left, first ? use : unknown));
}

void PrecedentWalk::visit_intersection(const Part& part) {
  std::vector<Leaf> leaves;
  formula::NodeIndex index = part.node;
  while (part.tree->at(index).op == formula::Operator::intersect) {
    const formula::NodeIndex left = part.tree->at(index).first_child;
    const auto found = leaf(part.child(part.tree->at(left).next, part.use));
    if (!found) break;
    leaves.push_back(*found);
    index = left;
  }
  const auto first = part.tree->at(index).op == formula::Operator::intersect
                         ? std::nullopt
                         : leaf(part.child(index, part.use));
  if (!first || leaves.size() > 0xFFFF) {
    const Use use = part.use == Use::single ? Use::full : part.use;
    push(part.child(part.tree->at(part.at().first_child).next, use));
    push(part.child(part.at().first_child, use));
    return;
  }
  if (part.use == Use::address) return;
  add(first->area, first->sheet, part.use);
  list_.items.back().implicit = part.use == Use::single;
  list_.items.back().meets = static_cast<std::uint16_t>(leaves.size());
  for (const Leaf& other : leaves) add(other.area, other.sheet, Use::full);
}

/// What the function makes of its arguments shows in evaluation only.
void PrecedentWalk::visit_invocation(const Part& part) {
  for (formula::NodeIndex child = part.at().first_child; child != formula::no_node;
       child = part.tree->at(child).next)
    push(part.child(child, Use::full));
}

bool PrecedentWalk::is_local(const Part& part, std::string_view name) const {
  return std::any_of(locals_.begin(), locals_.end(), [&](const auto& local) {
    return local.first == part.tree && text::equal_fold(local.second, name);
  });
}

}  // namespace qto::embedded
