#include <algorithm>
#include <cmath>

#include "qto/formula/node_text.hpp"
#include "qto/parser/exact/decide.hpp"

namespace qto::exact {
namespace {

/// A range that is tested, and what it is tested for as texts of which each selects cells.
struct Criterion {
  Area range;
  std::vector<std::string> texts;
};

std::string quoted(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) out.append(c == '"' ? 2 : 1, c);
  return out + "\"";
}

/// A criterion's value as a text that stands for it in any cell. A blank one is asked for by the
/// reference itself, for as a criterion it counts as 0.
std::string criterion_text(const Variant& value, const std::string& written) {
  if (value.is_text()) return quoted(value.text());
  if (const auto* flag = value.get_if<bool>()) return *flag ? "TRUE" : "FALSE";
  if (value.is_empty()) return written.empty() ? "0" : written;
  formula::SyntaxTree number;
  number.nodes.resize(1);
  number.nodes[0].kind = formula::NodeKind::number;
  number.nodes[0].number = number_in(value).value_or(0);
  std::string text;
  formula::append_node(text, number, 0, {});
  return text;
}

std::string address_text(const Area& area) {
  formula::SheetQualifier qualifier;
  qualifier.book = area.sheet->workbook->Name();
  qualifier.sheet = area.sheet->name;
  std::string text;
  formula::append_qualifier(text, qualifier);
  append_rect(text, area.rect, true, true);
  return text;
}

/// Which cells of a block meet all criteria: blocks in which none does are passed over, those in
/// which all do are taken whole, others are halved.
class Selection {
 public:
  Selection(const Call& call, const std::vector<Criterion>& criteria)
      : call_(call), criteria_(criteria), chosen_(criteria.size()) {}

  /// False when the host cannot count.
  bool run() {
    const Rect all = criteria_.front().range.rect;
    return run_combinations(0, {{1, 1}, {all.rows(), all.columns()}});
  }
  /// Blocks counted from the top left of the ranges.
  const std::vector<Rect>& blocks() const noexcept { return blocks_; }

 private:
  bool run_combinations(std::size_t criterion, const Rect& all) {
    if (criterion == criteria_.size()) return select(all);
    for (const std::string& text : criteria_[criterion].texts) {
      chosen_[criterion] = text;
      if (!run_combinations(criterion + 1, all)) return false;
    }
    return true;
  }

  bool select(const Rect& block) {
    std::vector<Rect> work{block};
    while (!work.empty()) {
      const Rect next = work.back();
      work.pop_back();
      const auto count = count_in(next);
      if (!count) return false;
      if (*count == 0) continue;
      if (*count >= static_cast<double>(next.cells())) {
        add(next);
        continue;
      }
      Rect first = next;
      Rect second = next;
      if (next.rows() > 1) {
        first.last.row = next.first.row + next.rows() / 2 - 1;
        second.first.row = first.last.row + 1;
      } else {
        first.last.column = next.first.column + next.columns() / 2 - 1;
        second.first.column = first.last.column + 1;
      }
      work.push_back(second);
      work.push_back(first);
    }
    return true;
  }

  std::optional<double> count_in(const Rect& block) const {
    std::string text = "COUNTIFS(";
    for (std::size_t i = 0; i < criteria_.size(); ++i) {
      Area part = criteria_[i].range;
      const CellPos corner = part.rect.first;
      part.rect = {{corner.row + block.first.row - 1, corner.column + block.first.column - 1},
                   {corner.row + block.last.row - 1, corner.column + block.last.column - 1}};
      text += (i > 0 ? "," : "") + address_text(part) + "," + chosen_[i];
    }
    const auto count = call_.evaluation.value(text + ")");
    const auto* number = count ? count->get_if<double>() : nullptr;
    return number ? std::optional(*number) : std::nullopt;
  }

  /// Blocks that follow one another down the same columns become one.
  void add(const Rect& block) {
    if (!blocks_.empty()) {
      Rect& last = blocks_.back();
      if (last.first.column == block.first.column && last.last.column == block.last.column &&
          last.last.row + 1 == block.first.row) {
        last.last.row = block.last.row;
        return;
      }
    }
    blocks_.push_back(block);
  }

  const Call& call_;
  const std::vector<Criterion>& criteria_;
  std::vector<std::string> chosen_;
  std::vector<Rect> blocks_;
};

constexpr std::size_t most_combinations = 64;

/// The criterion of two arguments, or why it cannot be told.
std::string read_criterion(const Call& call, std::size_t range, std::size_t criterion,
                           std::vector<Criterion>& criteria) {
  const auto areas = call.evaluation.areas(call.arguments[range], call.scope);
  if (!areas || areas->size() != 1 || areas->front().closed)
    return "the range that is tested is no block of cells of an open workbook";
  Criterion read{areas->front(), {}};
  const Told told = tell(call, criterion, "a criterion");
  if (!told.why.empty()) return told.why;
  const std::string written = call.text(criterion);
  std::string why;
  each_element(told.value, [&](const Variant& element) {
    if (element.is_error()) why = "a criterion is an error";
    const std::string text = criterion_text(element, written);
    if (std::find(read.texts.begin(), read.texts.end(), text) == read.texts.end())
      read.texts.push_back(text);
    return why.empty() && read.texts.size() <= most_combinations;
  });
  if (!why.empty()) return why;
  std::size_t combinations = read.texts.size();
  for (const Criterion& other : criteria) combinations *= other.texts.size();
  if (combinations > most_combinations) return "its criteria differ over an array";
  if (!criteria.empty()) {
    const Rect& first = criteria.front().range.rect;
    if (first.rows() != read.range.rect.rows() || first.columns() != read.range.rect.columns())
      return "its ranges differ in shape";
  }
  criteria.push_back(std::move(read));
  return "";
}

/// The cells of `range` at the selected places, counted from its top left, also beyond its end.
void add_selected(const Area& range, const std::vector<Rect>& blocks, Outcome& outcome) {
  Part part;
  const CellPos corner = range.rect.first;
  for (const Rect& block : blocks) {
    const Rect moved{{corner.row + block.first.row - 1, corner.column + block.first.column - 1},
                     {corner.row + block.last.row - 1, corner.column + block.last.column - 1}};
    if (const auto inside = moved.intersect(Rect::sheet()))
      part.areas.push_back({range.sheet, range.closed, *inside});
  }
  if (!part.areas.empty()) outcome.parts.push_back(std::move(part));
}

Outcome decide_sum(const Call& call, const std::vector<Criterion>& criteria,
                   const std::vector<Area>& summed) {
  Selection selection(call, criteria);
  if (!selection.run()) return Outcome::whole("its criteria cannot be evaluated");
  Outcome outcome;
  for (const Area& range : summed) add_selected(range, selection.blocks(), outcome);
  return outcome;
}

}  // namespace

/// The range that is added up is paired with the tested one from its top left cell.
Outcome decide_sumif(const Call& call) {
  if (call.count() < 2) return Outcome::whole("it has too few arguments");
  std::vector<Criterion> criteria;
  if (std::string why = read_criterion(call, 0, 1, criteria); !why.empty())
    return Outcome::whole(why);
  if (!call.given(2)) return decide_sum(call, criteria, {criteria.front().range});
  const auto summed = call.evaluation.areas(call.arguments[2], call.scope);
  if (!summed || summed->size() != 1)
    return Outcome::whole("the range that is added up is no block of cells");
  return decide_sum(call, criteria, {summed->front()});
}

Outcome decide_sumifs(const Call& call) {
  if (call.count() < 3) return Outcome::whole("it has too few arguments");
  std::vector<Criterion> criteria;
  for (std::size_t i = 1; i + 1 < call.count(); i += 2)
    if (std::string why = read_criterion(call, i, i + 1, criteria); !why.empty())
      return Outcome::whole(why);
  const auto summed = call.evaluation.areas(call.arguments[0], call.scope);
  if (!summed || summed->size() != 1)
    return Outcome::whole("the range that is added up is no block of cells");
  const Rect& tested = criteria.front().range.rect;
  const Rect& sum = summed->front().rect;
  if (tested.rows() != sum.rows() || tested.columns() != sum.columns())
    return Outcome::whole("its ranges differ in shape");
  return decide_sum(call, criteria, {summed->front()});
}

Outcome decide_countifs(const Call& call) {
  if (call.count() < 2) return Outcome::whole("it has too few arguments");
  std::vector<Criterion> criteria;
  std::vector<Area> counted;
  for (std::size_t i = 0; i + 1 < call.count(); i += 2) {
    if (std::string why = read_criterion(call, i, i + 1, criteria); !why.empty())
      return Outcome::whole(why);
    counted.push_back(criteria.back().range);
  }
  return decide_sum(call, criteria, counted);
}

/// The rows or columns that the conditions let through.
Outcome decide_filter(const Call& call) {
  if (call.count() < 2) return Outcome::whole("it has too few arguments");
  const auto text = call.evaluation.text_of(call.arguments[1], call.scope);
  if (!text) return Outcome::whole("its conditions depend on a parameter");
  const auto value = call.evaluation.elements(*text);
  if (!value) return Outcome::whole("its conditions cannot be evaluated");
  const Shape shape = shape_of(call, call.arguments[0], call.scope);
  const bool rows = !value->is_array() || value->array().columns() == 1;
  Outcome outcome;
  std::int32_t place = 0;
  std::int32_t first = 0;
  bool clear = true;
  each_element(*value, [&](const Variant& element) {
    ++place;
    const auto holds = number_in(element);
    if (element.is_error() || !holds) clear = false;
    if (clear && *holds != 0) {
      add_element(call, call.arguments[0], call.scope, rows ? place : 0, rows ? 0 : place, outcome);
      ++first;
    }
    return clear;
  });
  if (!clear) return Outcome::whole("one of its conditions is no truth value");
  if (place != (rows ? shape.rows : shape.columns))
    return Outcome::whole("its conditions do not fit its table");
  if (first > 0) return outcome;
  if (!call.given(2)) return Outcome::whole("none of its conditions holds");
  outcome.parts.push_back(argument_part(call, 2));
  return outcome;
}

}  // namespace qto::exact
