#pragma once

#include <deque>
#include <span>
#include <vector>

#include "qto/hosts/embedded/recalc/cell_set.hpp"
#include "qto/hosts/embedded/recalc/formula_groups.hpp"
#include "qto/hosts/embedded/recalc/stack_order.hpp"

namespace qto::embedded {

/// What a search finds.
class ComponentVisitor {
 public:
  virtual ~ComponentVisitor() = default;
  /// Everything that the node reads has been settled, and it lies on no cycle. When it must wait
  /// for blocks that nobody knew of, it appends them to `waits` and is asked again later.
  virtual void settle(const FormulaNode& node, std::vector<Area>& waits) = 0;
  /// Nodes that read each other, or one that reads itself. When they must wait for blocks outside
  /// of the cycle, these are appended to `waits` and the cycle, maybe a larger one, comes again.
  virtual void cycle(std::span<const FormulaNode> nodes, std::vector<Area>& waits) = 0;
};

/// What counts as read in a search.
enum class Reads {
  /// All that a formula may read, but for what is watched only. Where that closes a cycle, its
  /// formulas are gone through again with what they turn out to read.
  in_order,
  /// All that a formula may read.
  possible,
  /// What a formula reads in any case; the visitor tells the rest.
  certain,
};

/// Goes through all formula cells of a graph, what is read before what reads it, and finds the
/// cycles: strongly connected components by depth, without recursion. A block that a formula reads
/// leads to its formula cells through sets of bits, so every cell is entered once and a block costs
/// next to nothing when its cells are done.
class ComponentSearch {
 public:
  /// Formulas that are not in the selection count as settled.
  ComponentSearch(FormulaGraph& graph, ComponentVisitor& visitor,
                  const FormulaSelection& selection = FormulaSelection::everything(),
                  Reads reads = Reads::in_order);
  void run();
  /// True when the block holds formula cells that are not settled yet. While a cycle is told, its
  /// own cells count as settled.
  bool unsettled(const Area& area) const noexcept;

 private:
  /// An array formula too large to be in sets of cells.
  struct LargeBlock {
    Rect block;
    FormulaId formula;
    enum { fresh, on_stack, done } state = fresh;
    bool reopened = false;
    std::uint32_t order = 0;
  };
  struct SheetState {
    CellSet fresh;     // not entered yet
    CellSet on_stack;  // entered, its component not complete
    CellSet reopened;  // entered once more, because what may be read closes a cycle
    StackOrder order;  // of the cells on the stack, once numbered_
    std::vector<LargeBlock> large;
  };
  /// A node whose precedents are being gone through.
  struct OpenNode {
    FormulaNode node;
    const PrecedentList* list;
    std::size_t item = 0;
    std::size_t wait = 0;  // next of the blocks in waits_ that belong to this open
    std::size_t waits_begin = 0;
    std::size_t stack_begin = 0;  // where stack_ holds this node
    std::uint32_t order = 0;
    std::uint32_t low = 0;  // the lowest order that is reached from here
    bool reads_itself = false;
    bool certain = false;  // goes through what is read in any case only
  };

  void collect(std::uint32_t number, const FormulaSelection& selection);
  bool enter_next(std::uint32_t number);
  void search();
  /// Goes on with a open; false when it has entered another node.
  bool advance(OpenNode& open);
  /// Enters a fresh node of the block, or notes what is on the stack; true when it entered one.
  bool visit(OpenNode& open, const Area& area);
  bool visit_large(OpenNode& open, std::uint32_t sheet, const Rect& rect);
  void enter(std::uint32_t sheet, CellPos pos);
  void enter_large(std::uint32_t sheet, LargeBlock& large);
  void push(const FormulaNode& node, std::uint32_t order);
  bool finish(OpenNode& open);
  bool close_component(OpenNode& open);
  bool may_reopen(std::span<const FormulaNode> nodes);
  void reopen(const FormulaNode& node);
  bool is_reopened(const FormulaNode& node) const noexcept;
  void take_off_stack(const FormulaNode& node);
  void number_cells(const FormulaNode& node, std::uint32_t order);
  void number_stack();
  LargeBlock* large_block(const FormulaNode& node) noexcept;

  FormulaGraph& graph_;
  ComponentVisitor& visitor_;
  Reads reads_;
  std::vector<SheetState> sheets_;
  std::deque<OpenNode> path_;
  std::vector<FormulaNode> stack_;  // nodes whose component is not complete
  std::vector<Area> waits_;
  std::uint32_t entered_ = 0;
  bool numbered_ = false;
  std::uint32_t closing_ = 0;  // the lowest order in the cycle that is being told; 0 for none
};

}  // namespace qto::embedded
