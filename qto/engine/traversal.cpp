#include <deque>
#include <optional>
#include <unordered_set>

#include "qto/automation/address.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/engine/drill_down.hpp"
#include "qto/engine/part_graph.hpp"
#include "qto/host/application.hpp"
#include "qto/host/failure.hpp"
#include "qto/parser/parser.hpp"

namespace qto {

/// One part under way: its precedents and how far the pass over them has come.
struct DrillDown::Entered {
  explicit Entered(Ref<ModelPart> entered)
      : part(entered), walked(std::move(entered)), is_parent(walked->is_range()) {}
  Ref<ModelPart> part;    // a client may put another in its place
  Ref<ModelPart> walked;  // the one that was entered
  bool is_parent;         // on the parser's stack of parents
  diagnostics::TracedCall traced = 0;
  std::optional<ModelParts::Pass> pass;
};

/// A depth-first walk with its own stack: it visits in the order of a recursive one, at any depth.
/// However it ends, the parser's parent stack and the depth are as before.
class DrillDown::Walk {
 public:
  enum class EmptyLists { keep, drop };
  Walk(DrillDown& drill, const char* name, EmptyLists empty_lists)
      : drill_(drill),
        name_(name),
        drops_empty_lists_(empty_lists == EmptyLists::drop),
        parents_(drill.clsParser_->ParentCount()),
        depth_(drill.current_depth_) {}
  Walk(const Walk&) = delete;
  Walk& operator=(const Walk&) = delete;
  ~Walk() {
    while (!stack_.empty()) pop();
    while (drill_.clsParser_->ParentCount() > parents_) drill_.clsParser_->RemoveParentRange();
    drill_.current_depth_ = depth_;
    drill_.clsParser_->forget_blocks();
    if (drill_.met_cycle_) watch_graph(start_, *drill_.parts_analysed_);
  }

  /// `enter` determines the part's precedents and gives the list to pass over, or null; `visit`
  /// handles one precedent and answers whether to descend into it.
  template <class Enter, class Visit>
  void run(const Ref<ModelPart>& start, Enter&& enter, Visit&& visit) {
    start_ = start;
    push(start, enter);
    while (!stack_.empty()) {
      Entered& entered = stack_.back();
      ModelPart* next = entered.pass ? next_of(*entered.pass) : nullptr;
      if (!next) {
        pop();
        continue;
      }
      Ref<ModelPart> precedent(next);
      if (visit(precedent, entered.pass->list()))
        push(std::move(precedent), enter);
      else if (precedent->on_walk() && drill_.reads_exactly())
        cut_circle(*precedent);
    }
  }

 private:
  template <class Enter>
  void push(Ref<ModelPart> part, Enter&& enter) {
    stack_.emplace_back(std::move(part));
    Entered& entered = stack_.back();
    if (diagnostics::tracing()) entered.traced = diagnostics::trace_in("DrillDown", name_);
    drill_.yield();
    ++drill_.current_depth_;
    entered.walked->mark_walk(true);
    if (entered.is_parent) drill_.clsParser_->AddParentRange(*entered.walked);
    if (const Ref<ModelParts> list = enter(entered.part)) entered.pass.emplace(list);
  }

  /// Without a depth limit, parts that were walked once have nothing new below them.
  ModelPart* next_of(ModelParts::Pass& pass) const {
    // Of a range that may have millions of cells nothing more is taken up.
    if (drill_.exceeded_) pass.skip_blocks();
    return drill_.maximum_depth_ == 0 ? pass.next_for(drill_.drill_number_, drill_.met_cycle_)
                                      : pass.next();
  }

  /// The part under way refers back to one above it; it tells the way from there.
  void cut_circle(const ModelPart& first) {
    constexpr std::int32_t most_circles = 1000;
    constexpr std::size_t shown_steps = 20;
    if (drill_.circles_->size() >= most_circles) return;
    std::size_t from = stack_.size();
    while (from > 0 && stack_[from - 1].walked.get() != &first) --from;
    if (from == 0) return;
    std::string way = "circle: ";
    for (std::size_t i = from - 1; i < stack_.size(); ++i) {
      const std::size_t steps = i + 1 - from;
      if (steps == shown_steps / 2 && stack_.size() - from > shown_steps) {
        way += "… → ";
        i = stack_.size() - shown_steps / 2;
      }
      way += place_of(*stack_[i].walked) + " → ";
    }
    const Entered& last = stack_.back();
    last.part->add_remark(way + place_of(first));
    Ref<ModelPart> closing = last.part;
    add_to(*drill_.circles_, closing);
  }

  static std::string place_of(const ModelPart& part) {
    std::string place;
    if (const std::string sheet = part.WorkSheetName(); !sheet.empty() && !part.is_name()) {
      append_sheet_name(place, sheet);
      place += "!";
    }
    return place + part.AddressShort();
  }

  void pop() {
    const Entered& entered = stack_.back();
    const auto& list = entered.part->direct();
    if (drops_empty_lists_ && list && list->size() == 0) entered.part->set_direct(nullptr);
    if (entered.is_parent && drill_.clsParser_->ParentCount() > parents_)
      drill_.clsParser_->RemoveParentRange();
    entered.walked->mark_walk(false);
    --drill_.current_depth_;
    const diagnostics::TracedCall traced = entered.traced;
    stack_.pop_back();
    if (traced != 0) diagnostics::trace_out("DrillDown", name_, traced);
  }

  DrillDown& drill_;
  const char* const name_;
  const bool drops_empty_lists_;
  const std::size_t parents_;
  const std::int32_t depth_;
  Ref<ModelPart> start_;
  std::deque<Entered> stack_;
};

void DrillDown::yield() {
  // A host that cannot work off its messages can still be asked.
  if (const auto& app = context_->application()) (void)host::tried([&] { app->yield(); });
}

/// A part whose key cannot be told, which was reported, counts as not met before.
ModelPart* DrillDown::find_analysed(ModelPart& part) const {
  ModelPart* found = nullptr;
  (void)host::tried([&] {
    const PartKey& key = part.Key();
    found = parts_analysed_->find(key);
    if (!found && reads_exactly() && key == start_part_->Key()) found = start_part_.get();
  });
  return found;
}

void DrillDown::find_precedents_if_necessary(Ref<ModelPart>& part) {
  procedure("DrillDown", "find_precedents_if_necessary", [this, &part] {
    if (!part->CheckedForPrecedents()) find_precedents(part);
    yield();
  });
}

void DrillDown::find_precedents(Ref<ModelPart>& part) {
  bool cancel = false;
  raise_about(BeforeGetPrecedents, part, cancel);
  if (cancel)
    part->set_checked(true);
  else
    clsParser_->Parse(*part, !BeforeGetPrecedents);
}

void DrillDown::add_to(ModelParts& parts, Ref<ModelPart>& part) {
  Ref<ModelPart> added = part;
  parts.AddExisting(added);
  if (added) part = std::move(added);
}

bool DrillDown::already_seen(Ref<ModelPart>& part, ModelParts& list) {
  return procedure(
      "DrillDown", "already_seen",
      [this](Ref<ModelPart>& part, ModelParts& list) QTO_INLINED {
        Ref<ModelPart> canonical(find_analysed(*part));
        if (!canonical) {
          add_to(*parts_analysed_, part);
          check_max_items(parts_analysed_->size());
          return false;
        }
        if (canonical != part) {
          list.replace(*part, canonical);
          canonical->CheckForChanges();
          part = canonical;
        }
        if (part->on_walk()) met_cycle_ = true;
        return true;
      },
      part, list);
}

void DrillDown::drill_this_cell(const Ref<ModelPart>& start) {
  Walk walk(*this, "drill_this_cell", Walk::EmptyLists::drop);
  walk.run(
      start,
      [this, &start](Ref<ModelPart>& part) {
        if (part == start || !find_analysed(*part)) part->set_checked(false);
        find_precedents_if_necessary(part);
        return part->direct();
      },
      [this](Ref<ModelPart>& precedent, ModelParts& list) {
        const bool seen = already_seen(precedent, list);
        if (maximum_depth_ != 0 && current_depth_ >= maximum_depth_) return false;
        return !exceeded_ && !precedent->is_unknown() && !seen;
      });
}

namespace {

/// The parser's parents and the depth are as before when it ends.
template <class Restore>
class AtEnd {
 public:
  explicit AtEnd(Restore restore) : restore_(std::move(restore)) {}
  AtEnd(const AtEnd&) = delete;
  AtEnd& operator=(const AtEnd&) = delete;
  ~AtEnd() { restore_(); }

 private:
  Restore restore_;
};

}  // namespace

/// Level by level, so that every part is met on its shortest way and those within the limit get
/// their precedents.
void DrillDown::drill_by_distance(const Ref<ModelPart>& start) {
  struct Waiting {
    Ref<ModelPart> part;
    Ref<ModelPart> user;  // the cell that names are seen from
    std::int32_t distance;
  };
  std::deque<Waiting> waiting{{start, start, 0}};
  const std::size_t parents = clsParser_->ParentCount();
  const AtEnd restore([this, parents, depth = current_depth_] {
    while (clsParser_->ParentCount() > parents) clsParser_->RemoveParentRange();
    current_depth_ = depth;
    clsParser_->forget_blocks();
  });
  bool met_again = false;
  for (; !waiting.empty(); waiting.pop_front()) {
    auto& [part, user, distance] = waiting.front();
    yield();
    current_depth_ = distance + 1;
    if (!find_analysed(*part) || part == start) part->set_checked(false);
    if (user->is_range()) clsParser_->AddParentRange(*user);
    find_precedents_if_necessary(part);
    if (user->is_range()) clsParser_->RemoveParentRange();
    const Ref<ModelParts> list = part->direct();
    if (!list) continue;
    ModelParts::Pass pass(list);
    while (ModelPart* next = pass.next()) {
      Ref<ModelPart> precedent(next);
      if (already_seen(precedent, *list)) {
        met_again = true;
      } else if (distance + 1 < maximum_depth_ && !exceeded_ && !precedent->is_unknown()) {
        waiting.push_back({precedent, precedent->is_range() ? precedent : user, distance + 1});
      }
    }
    if (list->size() == 0) part->set_direct(nullptr);
  }
  if (met_again) mark_circles(start);
}

void DrillDown::mark_circles(const Ref<ModelPart>& start) {
  std::unordered_set<const ModelPart*> walked{start.get()};
  Walk walk(*this, "drill_by_distance", Walk::EmptyLists::keep);
  walk.run(
      start, [](Ref<ModelPart>& part) { return part->direct(); },
      [&](Ref<ModelPart>& precedent, ModelParts&) {
        if (precedent->on_walk()) met_cycle_ = true;
        return walked.insert(precedent.get()).second;
      });
}

void DrillDown::collect_input(Ref<ModelPart>& part) {
  switch (part->constants()) {
    case qtoFormulaContainsConstant:
      add_to(*input_cells_, part);
      break;
    case qtoFormulaContainsConstZeroOrOne:
      if (!ignore_zero_or_one_) add_to(*input_cells_, part);
      break;
    case qtoNoConstantInFormula:
      break;
  }
}

void DrillDown::drill_to_inputs(const Ref<ModelPart>& start) {
  Walk walk(*this, "drill_to_inputs", Walk::EmptyLists::keep);
  walk.run(
      start,
      [this](Ref<ModelPart>& part) {
        find_precedents_if_necessary(part);
        const Ref<ModelParts> list = part->direct();
        if (list)
          collect_input(part);
        else
          add_to(*input_cells_, part);
        return list;
      },
      [this](Ref<ModelPart>& precedent, ModelParts& list) {
        if (already_seen(precedent, list) || exceeded_) return false;
        if (!precedent->is_unknown()) return true;
        add_to(*input_cells_, precedent);
        return false;
      });
}

void DrillDown::drill_to_errors(const Ref<ModelPart>& start) {
  Walk walk(*this, "drill_to_errors", Walk::EmptyLists::keep);
  walk.run(
      start,
      [this](Ref<ModelPart>& part) {
        find_precedents_if_necessary(part);
        Ref<ModelParts> list = part->direct();
        bool any_error = false;
        if (list) any_error = list->any_error(drill_number_);
        if (any_error) return list;
        add_to(*error_cells_, part);
        return Ref<ModelParts>();
      },
      [this](Ref<ModelPart>& precedent, ModelParts& list) {
        if (already_seen(precedent, list) || exceeded_) return false;
        if (!precedent->is_unknown()) return precedent->HasError();
        add_to(*error_cells_, precedent);
        return false;
      });
}

}  // namespace qto
