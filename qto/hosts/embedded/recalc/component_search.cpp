#include "qto/hosts/embedded/recalc/component_search.hpp"

#include <algorithm>

namespace qto::embedded {

ComponentSearch::ComponentSearch(FormulaGraph& graph, ComponentVisitor& visitor,
                                 const FormulaSelection& selection, Reads reads)
    : graph_(graph), visitor_(visitor), reads_(reads), sheets_(graph.sheet_count()) {
  for (std::uint32_t number = 0; number < graph.sheet_count(); ++number) collect(number, selection);
}

void ComponentSearch::collect(std::uint32_t number, const FormulaSelection& selection) {
  const Sheet& sheet = graph_.sheet(number);
  SheetState& state = sheets_[number];
  if (sheet.cells.formula_count() == 0) return;
  for (const auto& large : sheet.large_blocks())
    if (sheet.book().formula(large.id).kind == FormulaKind::array &&
        selection.contains(number, large.id))
      state.large.push_back({large.block, large.id});
  const auto is_large = [&](FormulaId id) {
    return std::any_of(state.large.begin(), state.large.end(),
                       [id](const LargeBlock& large) { return large.formula == id; });
  };
  FormulaId last = 0;
  bool wanted = false;
  sheet.cells.for_each(Rect::sheet(), [&](CellPos pos, const Cell&, FormulaId id) {
    if (id == 0) return;
    if (id != last) {
      last = id;
      wanted = sheet.book().formula(id).kind != FormulaKind::data_table && !is_large(id) &&
               selection.contains(number, id);
    }
    if (wanted) state.fresh.insert(pos);
  });
}

void ComponentSearch::run() {
  for (std::uint32_t number = 0; number < sheets_.size(); ++number)
    while (enter_next(number)) search();
}

/// Enters a fresh node of the sheet; false when it has none.
bool ComponentSearch::enter_next(std::uint32_t number) {
  SheetState& state = sheets_[number];
  if (const auto pos = state.fresh.next_in(Rect::sheet())) {
    enter(number, *pos);
    return true;
  }
  for (LargeBlock& large : state.large)
    if (large.state == LargeBlock::fresh) {
      enter_large(number, large);
      return true;
    }
  return false;
}

void ComponentSearch::search() {
  while (!path_.empty())
    if (advance(path_.back())) path_.pop_back();
}

bool ComponentSearch::advance(OpenNode& open) {
  const std::vector<Precedent>& items = open.list->items;
  Sheet& sheet = graph_.sheet(open.node.sheet);
  while (open.item < items.size()) {
    std::size_t next = open.item;
    const Precedent& item = items[next];
    if (open.certain ? item.depends_on_values() : item.watched_only && reads_ != Reads::possible) {
      open.item += 1 + std::size_t{item.meets};
      continue;
    }
    const std::optional<Area> area = resolve_precedent(items, next, sheet, open.node.at);
    if (area && visit(open, *area)) return false;
    open.item = next;
  }
  for (; open.wait < waits_.size(); ++open.wait)
    if (visit(open, Area(waits_[open.wait]))) return false;
  return finish(open);
}

bool ComponentSearch::visit(OpenNode& open, const Area& area) {
  const auto number = area.sheet == &graph_.sheet(open.node.sheet) ? open.node.sheet
                                                                   : graph_.number_of(*area.sheet);
  if (!number) return false;
  SheetState& state = sheets_[*number];
  if (const auto pos = state.fresh.next_in(area.rect)) {
    enter(*number, *pos);
    return true;
  }
  if (state.on_stack.touches(area.rect)) {
    if (!numbered_) number_stack();
    const std::uint32_t lowest = state.order.smallest_in(area.rect);
    open.low = std::min(open.low, lowest);
    if (*number == open.node.sheet && graph_.cells_of(open.node).intersect(area.rect))
      open.reads_itself = true;
  }
  return !state.large.empty() && visit_large(open, *number, area.rect);
}

bool ComponentSearch::visit_large(OpenNode& open, std::uint32_t sheet, const Rect& rect) {
  for (LargeBlock& large : sheets_[sheet].large) {
    if (large.state == LargeBlock::done || !large.block.intersect(rect)) continue;
    if (large.state == LargeBlock::fresh) {
      enter_large(sheet, large);
      return true;
    }
    if (!numbered_) number_stack();
    open.low = std::min(open.low, large.order);
    if (large.order == open.order) open.reads_itself = true;
  }
  return false;
}

void ComponentSearch::enter(std::uint32_t sheet, CellPos pos) {
  const Sheet& owner = graph_.sheet(sheet);
  FormulaNode node{sheet, owner.cells.formula(pos), pos};
  const FormulaRecord& record = graph_.record(node);
  SheetState& state = sheets_[sheet];
  if (record.kind == FormulaKind::normal) {
    state.fresh.erase(pos);
    state.on_stack.insert(pos);
  } else {
    node.at = record.block.first;
    state.fresh.erase(record.block);
    state.fresh.erase(pos);
    state.on_stack.insert(record.block);
  }
  const std::uint32_t order = ++entered_;
  if (numbered_) number_cells(node, order);
  push(node, order);
}

void ComponentSearch::number_cells(const FormulaNode& node, std::uint32_t order) {
  const Rect cells = graph_.cells_of(node);
  for (std::int32_t row = cells.first.row; row <= cells.last.row; ++row)
    for (std::int32_t column = cells.first.column; column <= cells.last.column; ++column)
      sheets_[node.sheet].order.set({row, column}, order);
}

/// Most graphs have no cycles and need no numbers. When the stack is met for the first time, it is
/// the path still.
void ComponentSearch::number_stack() {
  numbered_ = true;
  for (const OpenNode& open : path_)
    if (!large_block(open.node)) number_cells(open.node, open.order);
}

void ComponentSearch::enter_large(std::uint32_t sheet, LargeBlock& large) {
  large.state = LargeBlock::on_stack;
  large.order = ++entered_;
  push({sheet, large.formula, large.block.first}, large.order);
}

void ComponentSearch::push(const FormulaNode& node, std::uint32_t order) {
  OpenNode open;
  open.node = node;
  open.list = &graph_.precedents(node);
  open.wait = open.waits_begin = waits_.size();
  open.stack_begin = stack_.size();
  open.order = open.low = order;
  open.certain = reads_ == Reads::certain || is_reopened(node);
  path_.push_back(open);
  stack_.push_back(node);
}

bool ComponentSearch::finish(OpenNode& open) {
  const bool complete = open.low == open.order;
  const bool alone = stack_.size() == open.stack_begin + 1 && !open.reads_itself;
  if (complete && alone) {
    const std::size_t known = waits_.size();
    visitor_.settle(open.node, waits_);
    if (waits_.size() != known) return false;
    take_off_stack(stack_.back());
    stack_.pop_back();
  } else if (complete && !close_component(open)) {
    return false;
  }
  waits_.resize(open.waits_begin);
  if (path_.size() > 1) {
    OpenNode& reader = path_[path_.size() - 2];
    reader.low = std::min(reader.low, open.low);
  }
  return true;
}

/// False when the cycle has to wait. Nodes that are reopened come again when somebody reads them.
bool ComponentSearch::close_component(OpenNode& open) {
  const auto first = stack_.begin() + static_cast<std::ptrdiff_t>(open.stack_begin);
  const std::span<const FormulaNode> nodes(first, stack_.end());
  const bool again = reads_ == Reads::in_order && may_reopen(nodes);
  if (!again) {
    const std::size_t known = waits_.size();
    closing_ = open.order;
    visitor_.cycle(nodes, waits_);
    closing_ = 0;
    if (waits_.size() != known) return false;
  }
  for (const FormulaNode& node : nodes) {
    take_off_stack(node);
    if (again) reopen(node);
  }
  stack_.erase(first, stack_.end());
  return true;
}

/// True when the values may tell that it is no cycle at all.
bool ComponentSearch::may_reopen(std::span<const FormulaNode> nodes) {
  return std::any_of(nodes.begin(), nodes.end(), [this](const FormulaNode& node) {
    return !is_reopened(node) &&
           std::ranges::any_of(graph_.precedents(node).items, &Precedent::depends_on_values);
  });
}

void ComponentSearch::reopen(const FormulaNode& node) {
  if (LargeBlock* large = large_block(node)) {
    large->state = LargeBlock::fresh;
    large->reopened = true;
    return;
  }
  SheetState& state = sheets_[node.sheet];
  state.fresh.insert(graph_.cells_of(node));
  state.reopened.insert(node.at);
}

bool ComponentSearch::is_reopened(const FormulaNode& node) const noexcept {
  if (sheets_[node.sheet].reopened.contains(node.at)) return true;
  return std::ranges::any_of(sheets_[node.sheet].large, [&](const LargeBlock& large) {
    return large.reopened && large.formula == node.formula;
  });
}

ComponentSearch::LargeBlock* ComponentSearch::large_block(const FormulaNode& node) noexcept {
  for (LargeBlock& large : sheets_[node.sheet].large)
    if (large.formula == node.formula) return &large;
  return nullptr;
}

void ComponentSearch::take_off_stack(const FormulaNode& node) {
  SheetState& state = sheets_[node.sheet];
  const Rect cells = graph_.cells_of(node);
  if (cells.is_cell()) {
    state.on_stack.erase(node.at);
    if (numbered_) state.order.reset(node.at);
    return;
  }
  if (LargeBlock* large = large_block(node)) {
    large->state = LargeBlock::done;
    return;
  }
  state.on_stack.erase(cells);
  if (!numbered_) return;
  for (std::int32_t row = cells.first.row; row <= cells.last.row; ++row)
    for (std::int32_t column = cells.first.column; column <= cells.last.column; ++column)
      state.order.reset({row, column});
}

bool ComponentSearch::unsettled(const Area& area) const noexcept {
  const auto number = graph_.number_of(*area.sheet);
  if (!number) return false;
  const SheetState& state = sheets_[*number];
  // Orders count from 1, so outside of a cycle everything on the stack lies before its first.
  const std::uint32_t first = closing_ != 0 ? closing_ : entered_ + 1;
  const auto waits = [&](const LargeBlock& large) {
    const bool open = large.state == LargeBlock::fresh ||
                      (large.state == LargeBlock::on_stack && large.order < first);
    return open && large.block.intersect(area.rect);
  };
  if (state.fresh.touches(area.rect) || std::ranges::any_of(state.large, waits)) return true;
  return state.on_stack.touches(area.rect) &&
         (closing_ == 0 || state.order.smallest_in(area.rect) < first);
}

}  // namespace qto::embedded
