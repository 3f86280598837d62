#include "cli/answer/tree_text.hpp"

#include <fmt/format.h>

#include <deque>
#include <span>
#include <unordered_map>
#include <vector>

#include "cli/output/cell_run.hpp"
#include "cli/output/part_set.hpp"
#include "cli/output/part_text.hpp"
#include "qto/model/model_parts.hpp"

namespace qto::cli {
namespace {

/// Levels that are drawn; below them the number of the level stands before the address, for no
/// screen is as wide as a running total is deep.
constexpr std::size_t drawn_levels = 12;

std::vector<ModelPart*> items_of(ModelPart& part) {
  std::vector<ModelPart*> items;
  if (const auto& list = part.DirectPrecedents())
    list->for_each([&items](ModelPart& item) { items.push_back(&item); });
  return items;
}

/// How many steps the shortest way from the start to each part takes.
std::unordered_map<const ModelPart*, std::size_t> distances_from(ModelPart& start) {
  std::unordered_map<const ModelPart*, std::size_t> distances{{&start, 0}};
  std::deque<ModelPart*> waiting{&start};
  for (; !waiting.empty(); waiting.pop_front()) {
    const std::size_t next = distances.at(waiting.front()) + 1;
    for (ModelPart* item : items_of(*waiting.front()))
      if (distances.try_emplace(item, next).second) waiting.push_back(item);
  }
  return distances;
}

class TreePrinter {
 public:
  TreePrinter(std::FILE* out, ModelPart& start, bool full, bool by_distance, Progress& progress)
      : out_(out),
        start_(start),
        home_book_(start.WorkBookName()),
        full_(full),
        progress_(progress),
        met_(start) {
    if (by_distance) distances_ = distances_from(start);
  }

  TreeCounts print() {
    print_part(start_, "");
    while (!stack_.empty()) {
      if (stack_.back().next == stack_.back().items.size())
        leave();
      else
        print_next(stack_.back());
    }
    counts_.others = met_.count() - counts_.formulas;
    return counts_;
  }

 private:
  struct Level {
    std::vector<ModelPart*> items;
    std::size_t next = 0;
    std::size_t indent_before = 0;
  };

  void print_next(Level& level) {
    const auto rest = std::span<ModelPart* const>(level.items).subspan(level.next);
    const CellRun run = full_ ? CellRun{} : run_at_front(rest);
    level.next += run.cells > 0 ? run.cells : 1;
    const bool last = level.next == level.items.size();
    const std::string branch = stack_.size() <= drawn_levels ? last ? "└─ " : "├─ " : "";
    if (run.cells > 0) return print_run(rest, run, branch);
    // The line below a part that opens a level is drawn for as long as siblings follow.
    below_ = stack_.size() <= drawn_levels ? last ? "   " : "│  " : "";
    print_part(*rest[0], branch);
  }

  void print_part(ModelPart& part, const std::string& branch) {
    progress_.count_one();
    const PartText text = describe(part, home_book_, full_);
    std::string line = begin_line(branch) + text.address;
    if (!text.title.empty() && text.title != text.address) line += "  " + text.title;
    if (!text.formula.empty()) line += "  " + text.formula;
    if (!text.value.empty()) line += (text.formula.empty() ? "  " : " → ") + text.value;
    auto items = items_of(part);
    if (const std::string remark = part.DrillRemark(); !remark.empty())
      line += "  {" + one_line(remark) + "}";
    if (stands_nearer(part)) {
      if (!items.empty() && !met_.contains(&part)) line += "  (see below)";
      if (!items.empty() && met_.contains(&part)) line += "  (see above)";
      items.clear();
    } else if (!met_.insert(&part)) {
      if (!items.empty()) line += "  (see above)";
      items.clear();
    } else if (!text.formula.empty()) {
      ++counts_.formulas;
      if (!part.CheckedForPrecedents()) line += "  …";  // a limit ended the drill here
    }
    fmt::print(out_, "{}\n", line);
    counts_.levels = std::max(counts_.levels, stack_.size());
    if (!items.empty()) enter(std::move(items));
  }

  /// Of a tree with a bound every part has its precedents where it stands nearest to the start.
  bool stands_nearer(const ModelPart& part) const {
    const auto found = distances_.find(&part);
    return found != distances_.end() && found->second < stack_.size();
  }

  void print_run(std::span<ModelPart* const> parts, const CellRun& run, const std::string& branch) {
    const std::size_t full_cells = run.cells - run.empty;
    std::string what = counted(full_cells, "constant");
    if (run.empty > 0) what += ", " + counted(run.empty, "empty cell");
    fmt::print(out_, "{}{}  {}\n", begin_line(branch),
               readable_address(*parts[0], home_book_, address_of(run.block)), what);
    for (ModelPart* part : parts.first(run.cells)) met_.insert(part);
    counts_.levels = std::max(counts_.levels, stack_.size());
  }

  std::string begin_line(const std::string& branch) const {
    std::string line = indent_ + branch;
    if (stack_.size() > drawn_levels) line += fmt::format("[level {}] ", stack_.size());
    return line;
  }

  void enter(std::vector<ModelPart*> items) {
    stack_.push_back({std::move(items), 0, indent_.size()});
    if (stack_.size() > 1) indent_ += below_;
  }

  void leave() {
    indent_.resize(stack_.back().indent_before);
    stack_.pop_back();
  }

  std::FILE* out_;
  ModelPart& start_;
  const std::string home_book_;
  const bool full_;
  Progress& progress_;
  TreeCounts counts_;
  PartSet met_;
  std::unordered_map<const ModelPart*, std::size_t> distances_;  // of a tree with a bound only
  std::deque<Level> stack_;
  std::string indent_;
  const char* below_ = "";
};

}  // namespace

TreeCounts print_tree(std::FILE* out, const Ref<ModelPart>& start, bool full, bool by_distance,
                      Progress& progress) {
  return TreePrinter(out, *start, full, by_distance, progress).print();
}

}  // namespace qto::cli
