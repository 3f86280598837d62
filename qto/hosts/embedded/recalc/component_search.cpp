#include "qto/hosts/embedded/recalc/component_search.hpp"

#include <algorithm>

namespace qto::embedded {

ComponentSearch::ComponentSearch(FormulaGraph& graph, ComponentVisitor& visitor,
                                 const FormulaSelection& selection, WatchedItems watched)
    : graph_(graph),
      visitor_(visitor),
      reads_watched_(watched == WatchedItems::read),
      sheets_(graph.sheet_count()) {
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
  for (std::uint32_t number = 0; number < sheets_.size(); ++number) {
    SheetState& state = sheets_[number];
    while (const auto pos = state.fresh.next_in(Rect::sheet())) {
      enter(number, *pos);
      search();
    }
    for (LargeBlock& large : state.large)
      if (large.state == LargeBlock::fresh) {
        enter_large(number, large);
        search();
      }
  }
}

void ComponentSearch::search() {
  while (!path_.empty())
    if (advance(path_.back())) path_.pop_back();
}

bool ComponentSearch::advance(Frame& frame) {
  const std::vector<Precedent>& items = frame.list->items;
  Sheet& sheet = graph_.sheet(frame.node.sheet);
  while (frame.item < items.size()) {
    std::size_t next = frame.item;
    if (items[frame.item].watched_only && !reads_watched_) {
      frame.item += 1 + std::size_t{items[next].meets};
      continue;
    }
    const std::optional<Area> area = resolve_precedent(items, next, sheet, frame.node.at);
    if (area && visit(frame, *area)) return false;
    frame.item = next;
  }
  for (; frame.wait < waits_.size(); ++frame.wait)
    if (visit(frame, Area(waits_[frame.wait]))) return false;
  return finish(frame);
}

bool ComponentSearch::visit(Frame& frame, const Area& area) {
  const auto number = area.sheet == &graph_.sheet(frame.node.sheet) ? frame.node.sheet
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
    frame.low = std::min(frame.low, lowest);
    if (*number == frame.node.sheet && graph_.cells_of(frame.node).intersect(area.rect))
      frame.reads_itself = true;
  }
  return !state.large.empty() && visit_large(frame, *number, area.rect);
}

bool ComponentSearch::visit_large(Frame& frame, std::uint32_t sheet, const Rect& rect) {
  for (LargeBlock& large : sheets_[sheet].large) {
    if (large.state == LargeBlock::done || !large.block.intersect(rect)) continue;
    if (large.state == LargeBlock::fresh) {
      enter_large(sheet, large);
      return true;
    }
    frame.low = std::min(frame.low, large.order);
    if (large.order == frame.order) frame.reads_itself = true;
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
  for (const Frame& frame : path_)
    if (!large_block(frame.node)) number_cells(frame.node, frame.order);
}

void ComponentSearch::enter_large(std::uint32_t sheet, LargeBlock& large) {
  large.state = LargeBlock::on_stack;
  large.order = ++entered_;
  push({sheet, large.formula, large.block.first}, large.order);
}

void ComponentSearch::push(const FormulaNode& node, std::uint32_t order) {
  Frame frame;
  frame.node = node;
  frame.list = &graph_.precedents(node);
  frame.wait = frame.waits_begin = waits_.size();
  frame.stack_begin = stack_.size();
  frame.order = frame.low = order;
  path_.push_back(frame);
  stack_.push_back(node);
}

bool ComponentSearch::finish(Frame& frame) {
  const bool complete = frame.low == frame.order;
  const bool alone = stack_.size() == frame.stack_begin + 1 && !frame.reads_itself;
  if (complete && alone) {
    const std::size_t known = waits_.size();
    visitor_.settle(frame.node, waits_);
    if (waits_.size() != known) return false;
    take_off_stack(stack_.back());
    stack_.pop_back();
  } else if (complete) {
    close_component(frame);
  }
  waits_.resize(frame.waits_begin);
  if (path_.size() > 1) {
    Frame& reader = path_[path_.size() - 2];
    reader.low = std::min(reader.low, frame.low);
  }
  return true;
}

void ComponentSearch::close_component(const Frame& frame) {
  const auto first = stack_.begin() + static_cast<std::ptrdiff_t>(frame.stack_begin);
  visitor_.cycle({first, stack_.end()});
  std::for_each(first, stack_.end(), [this](const FormulaNode& node) { take_off_stack(node); });
  stack_.erase(first, stack_.end());
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
  return state.fresh.touches(area.rect) || state.on_stack.touches(area.rect) ||
         std::any_of(state.large.begin(), state.large.end(), [&](const LargeBlock& large) {
           return large.state != LargeBlock::done && large.block.intersect(area.rect);
         });
}

}  // namespace qto::embedded
