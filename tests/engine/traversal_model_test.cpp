#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "tests/support/text_book.hpp"

/// The three walks against a recursive model of them, written down as simply as it goes, on random
/// small books.
namespace qto::test {
namespace {

struct Cell {
  std::vector<int> refs;  // of a formula, in order, each once
  int constant = 0;       // as FormulaContainsConstant
  bool formula = false;
  bool error = false;  // what it shows
};
using Graph = std::vector<Cell>;

std::string name_of(int cell) { return "A" + std::to_string(cell + 1); }

struct Limits {
  int depth = 0;
  int items = 0;
  int stop_at = 0;  // the announcement that is answered with StopNow; 0: none
};

class Model {
 public:
  Model(const Graph& graph, const Limits& limits)
      : graph_(graph), limits_(limits), threshold_(limits.items) {}
  ~Model() {
    for (const Shared& part : made_) part->list.reset();  // circles hold themselves
  }

  std::string drill_here(int start) {
    const auto part = make(start);
    drill_this_cell(part);
    return log_ + "|" + written(part);
  }
  std::string find_inputs(int start) {
    drill_to_inputs(make(start));
    return log_ + "|" + found_;
  }
  std::string trace_error(int start) {
    drill_to_errors(make(start));
    return log_ + "|" + found_;
  }

 private:
  struct Part;
  using Shared = std::shared_ptr<Part>;
  struct Part {
    int cell;
    bool checked;
    std::unique_ptr<std::vector<Shared>> list;
  };

  Shared make(int cell) {
    made_.push_back(std::make_shared<Part>(Part{cell, !graph_[cell].formula, nullptr}));
    return made_.back();
  }
  const Cell& at(const Shared& part) const { return graph_[part->cell]; }

  void find_precedents(const Shared& part) {
    if (part->checked) return;
    log_ += " get " + name_of(part->cell);
    part->checked = true;
    part->list = std::make_unique<std::vector<Shared>>();
    for (const int ref : at(part).refs) part->list->push_back(make(ref));
  }
  bool already_seen(Shared& part, std::vector<Shared>& list) {
    for (const Shared& canonical : analysed_) {
      if (canonical->cell != part->cell) continue;
      if (canonical != part) {
        std::erase_if(list, [&](const Shared& item) { return item == part; });
        list.push_back(canonical);
        part = canonical;
      }
      return true;
    }
    analysed_.push_back(part);
    check_max_items(static_cast<int>(analysed_.size()));
    return false;
  }
  void check_max_items(int count) {
    if (limits_.items == 0 || exceeded_ || count < threshold_) return;
    log_ += " limit " + std::to_string(count);
    exceeded_ = ++announced_ == limits_.stop_at;
    if (!exceeded_) threshold_ += limits_.items;
  }
  /// The entries that the list holds at first: one that is moved to the end would only be seen.
  template <class Visit>
  void for_each_precedent(const Shared& part, Visit&& visit) {
    const std::vector<Shared> at_first = *part->list;
    for (Shared item : at_first) {
      const bool seen = already_seen(item, *part->list);
      visit(item, seen);
    }
  }
  void collect(const Shared& part) {
    const std::string entry = name_of(part->cell) + " ";
    if ((" " + found_).find(" " + entry) == std::string::npos) found_ += entry;
  }

  void drill_this_cell(const Shared& part) {
    ++depth_;
    find_precedents(part);
    if (part->list) {
      for_each_precedent(part, [&](const Shared& item, bool seen) {
        if (limits_.depth != 0 && depth_ >= limits_.depth) return;
        if (!exceeded_ && !seen) drill_this_cell(item);
      });
      if (part->list->empty()) part->list = nullptr;
    }
    --depth_;
  }
  void drill_to_inputs(const Shared& part) {
    find_precedents(part);
    if (!part->list) return collect(part);
    if (at(part).constant != 0) collect(part);
    for_each_precedent(part, [&](const Shared& item, bool seen) {
      if (!seen && !exceeded_) drill_to_inputs(item);
    });
  }
  void drill_to_errors(const Shared& part) {
    find_precedents(part);
    bool any = false;
    if (part->list)
      for (const Shared& item : *part->list) any = any || at(item).error;
    if (!any) return collect(part);
    for_each_precedent(part, [&](const Shared& item, bool seen) {
      if (!seen && !exceeded_ && at(item).error) drill_to_errors(item);
    });
  }

  std::string written(const Shared& top) {
    std::vector<const Part*> shown;
    const std::function<std::string(const Part&)> write = [&](const Part& part) {
      std::string out = name_of(part.cell);
      if (std::find(shown.begin(), shown.end(), &part) != shown.end()) return out;
      shown.push_back(&part);
      if (!part.list) return out;
      out += "(";
      for (const auto& item : *part.list) out += (out.back() == '(' ? "" : " ") + write(*item);
      return out + ")";
    };
    return write(*top);
  }

  const Graph& graph_;
  Limits limits_;
  int threshold_;
  int announced_ = 0;
  int depth_ = 0;
  bool exceeded_ = false;
  std::vector<Shared> made_;
  std::vector<Shared> analysed_;
  std::string log_;
  std::string found_;
};

Graph random_graph(std::mt19937& random, bool circles) {
  Graph graph(3 + random() % 9);
  const int size = static_cast<int>(graph.size());
  for (int i = 0; i < size; ++i) {
    Cell& cell = graph[i];
    cell.formula = i == size - 1 || random() % 4;
    if (!cell.formula) {
      cell.error = random() % 3 == 0;
      continue;
    }
    const int bound = circles ? size : i;
    for (unsigned n = random() % 5; bound > 0 && n > 0; --n) {
      const int ref = static_cast<int>(random() % static_cast<unsigned>(bound));
      if (std::find(cell.refs.begin(), cell.refs.end(), ref) == cell.refs.end())
        cell.refs.push_back(ref);
    }
    cell.constant = cell.refs.empty() ? 1 : static_cast<int>(random() % 3);
    for (const int ref : cell.refs) cell.error = cell.error || graph[ref].error;
  }
  return graph;
}

std::string text_of(const Graph& graph) {
  std::string text;
  for (std::size_t i = 0; i < graph.size(); ++i) {
    const Cell& cell = graph[i];
    text += name_of(static_cast<int>(i)) + "=";
    if (!cell.formula) {
      text += cell.error ? "#N/A; " : "5; ";
      continue;
    }
    std::string sum;
    for (const int ref : cell.refs) sum += "+" + name_of(ref);
    if (!sum.empty()) sum += "+" + name_of(cell.refs.front());  // written twice, listed once
    if (cell.constant == 1) sum += "+7";
    if (cell.constant == 2) sum += "+1";
    text += "=" + sum + "; ";
  }
  return text;
}

class Engine {
 public:
  Engine(Books& books, int start, const Limits& limits)
      : drill_(drill_from(books, name_of(start))) {
    drill_->put_MaximumDepth(limits.depth);
    drill_->put_MaxItems(limits.items);
    drill_->BeforeGetPrecedents.add([this](auto& part, bool&) { log_ += " get " + label(*part); });
    drill_->MaxItemsExceeded.add([this, limits](int, int count, bool& stop, int) {
      log_ += " limit " + std::to_string(count);
      stop = ++announced_ == limits.stop_at;
    });
  }
  std::string drill_here() {
    drill_->DrillHere();
    return log_ + "|" + tree(drill_->StartModelPart());
  }
  std::string find_inputs() {
    drill_->FindInputs();
    return log_ + "|" + found(drill_->InputCells());
  }
  std::string trace_error() {
    drill_->TraceError();
    return log_ + "|" + found(drill_->ErrorCells());
  }

 private:
  static std::string found(const Ref<ModelParts>& parts) {
    std::string out;
    parts->for_each([&](const ModelPart& part) { out += label(part) + " "; });
    return out;
  }
  Ref<DrillDown> drill_;
  std::string log_;
  int announced_ = 0;
};

Limits random_limits(std::mt19937& random, bool circles) {
  Limits limits;
  if (circles || random() % 2) limits.depth = 1 + static_cast<int>(random() % 6);
  if (random() % 2) {
    limits.items = 1 + static_cast<int>(random() % 4);
    limits.stop_at = static_cast<int>(random() % 4);
  }
  return limits;
}

TEST(TraversalModel, AgreesOnGraphsWithoutCircles) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed);
    const Graph graph = random_graph(random, false);
    const Limits limits = random_limits(random, false);
    Books books(text_of(graph));
    const int start = static_cast<int>(graph.size()) - 1;
    const std::string told = "seed " + std::to_string(seed) + ": " + text_of(graph);
    ASSERT_EQ(Engine(books, start, limits).drill_here(), Model(graph, limits).drill_here(start))
        << told;
    ASSERT_EQ(Engine(books, start, limits).find_inputs(), Model(graph, limits).find_inputs(start))
        << told;
    ASSERT_EQ(Engine(books, start, limits).trace_error(), Model(graph, limits).trace_error(start))
        << told;
  }
}

TEST(TraversalModel, AgreesOnGraphsWithCirclesAndABoundedDepth) {
  for (unsigned seed = 1000; seed < 1300; ++seed) {
    std::mt19937 random(seed);
    const Graph graph = random_graph(random, true);
    const Limits limits = random_limits(random, true);
    Books books(text_of(graph));
    const int start = static_cast<int>(graph.size()) - 1;
    ASSERT_EQ(Engine(books, start, limits).drill_here(), Model(graph, limits).drill_here(start))
        << "seed " << seed << ": " << text_of(graph);
  }
}

}  // namespace
}  // namespace qto::test
