#include "tests/conformance/perturbation/perturbation.hpp"

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/evaluator.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"
#include "tests/conformance/comparing.hpp"
#include "tests/conformance/perturbation/followed_cells.hpp"
#include "tests/conformance/perturbation/key_notes.hpp"
#include "tests/conformance/perturbation/reference_owners.hpp"

namespace qto::embedded::conformance {
namespace {

using Index = ChangeableCells::Index;
using Clock = std::chrono::steady_clock;

constexpr int most_culprits = 3;
constexpr std::size_t most_shown = 12;

/// All open books, holding their values; whether numbers were drawn shows.
class HeldWorld final : public StillWorld {
 public:
  HeldWorld(const std::vector<Book*>& books, double now) : StillWorld(now), books_(books) {}
  Book* find_open_book(std::string_view name) const override {
    for (Book* book : books_)
      if (text::equal_fold(book->name, name)) return book;
    return nullptr;
  }
  double random() override {
    drawn = true;
    return StillWorld::random();
  }
  bool drawn = false;

 private:
  const std::vector<Book*>& books_;
};

/// A formula that is tried.
struct Sample {
  CellAddress at;
  const FormulaRecord* record;
  bool first_of_pattern;
  Variant value;
  std::vector<Index> followed[followings];  // with cells at the end that are not to be changed
  std::size_t exempt[followings] = {};      // how many those are
  std::string failure[followings];
  bool active[followings] = {};
};

Ref<DrillOptions> options_for(const PerturbationPlan& plan, Following following) {
  if (const auto& given = plan.options[static_cast<int>(following)]) return given;
  auto options = make_ref<DrillOptions>();
  options->ShowAll();
  options->put_Reading(plan.reading);
  if (following == Following::used) {
    options->put_ParseIf(qtodrillconditionandused);
    options->put_ParseLookup(qtodrillconditionandused);
    options->put_ParseSumif(qtodrillconditionandused);
    options->put_ParseIndex(qtodrillusedsection);
    options->put_ParseMatch(qtoDrillMatchCondition);
  }
  return options;
}

class Run {
 public:
  Run(const Ref<host::Workbook>& workbook, const PerturbationPlan& plan)
      : plan_(plan),
        chance_(plan.seed),
        workbook_(workbook),
        open_(open_of(workbook)),
        books_(books_of(open_)),
        world_(books_, open_.application().now()),
        evaluator_(world_, functions_noting_keys()) {}

  PerturbationResult run() {
    const auto start = Clock::now();
    open_.application().ensure_calculated();
    choose();
    ChangeableCells cells(books_, chance_);
    cells_ = &cells;
    drill_all();
    result_.drill_seconds = std::chrono::duration<double>(Clock::now() - start).count();
    for (int round = 0; round < plan_.rounds; ++round) change_round(round);
    cells.restore_all();
    for (Sample& sample : samples_)
      if (sample.first_of_pattern) measure_reach(sample);
    result_.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    return std::move(result_);
  }

 private:
  static OpenBook& open_of(const Ref<host::Workbook>& workbook) {
    const auto object = dynamic_cast<const WorkbookObject*>(workbook.get());
    if (!object) throw std::invalid_argument("the workbook is not one of the embedded host");
    return object->open();
  }
  static std::vector<Book*> books_of(const OpenBook& open) {
    std::vector<Book*> books;
    for (const auto& other : open.application().books()) books.push_back(&other->book());
    return books;
  }

  // Which formulas

  void choose() {
    std::map<FormulaId, std::map<const Sheet*, std::vector<CellAddress>>> patterns;
    for (const auto& sheet : open_.book().sheets())
      sheet->cells.for_each(Rect::sheet(), [&](CellPos pos, const Cell&, FormulaId id) {
        if (id != 0) consider(patterns[id][sheet.get()], {sheet.get(), pos}, id);
      });
    for (auto& [id, sheets] : patterns)
      for (auto& [sheet, cells] : sheets) choose_from(cells, open_.book().formula(id));
    chance_.shuffle(samples_);
    std::stable_partition(samples_.begin(), samples_.end(),
                          [](const Sample& sample) { return sample.first_of_pattern; });
  }

  void consider(std::vector<CellAddress>& cells, const CellAddress& at, FormulaId id) {
    const FormulaRecord& record = open_.book().formula(id);
    ++result_.formulas;
    if (record.kind == FormulaKind::data_table)
      ++result_.data_tables;
    else if (record.compiled->broken())
      ++result_.unreadable;
    else if (record.kind != FormulaKind::array || at.pos == record.block.first)
      cells.push_back(at);
    else
      ++result_.copies;
  }

  void choose_from(std::vector<CellAddress>& cells, const FormulaRecord& record) {
    if (plan_.only) std::erase_if(cells, [&](const CellAddress& at) { return at != *plan_.only; });
    const std::size_t wanted = plan_.per_pattern == 0
                                   ? cells.size()
                                   : std::min<std::size_t>(cells.size(), plan_.per_pattern);
    result_.copies += static_cast<std::int64_t>(cells.size() - wanted);
    for (std::size_t i = 0; i < wanted; ++i) {
      // The first, the last, and any between.
      if (i == 1) std::swap(cells[1], cells.back());
      if (i > 1)
        std::swap(cells[i], cells[i + chance_.below(static_cast<std::uint32_t>(cells.size() - i))]);
      samples_.push_back({cells[i], &record, i == 0, {}, {}, {}, {}, {}});
    }
  }

  // What is followed

  void drill_all() {
    FollowedCells all(*cells_, books_, options_for(plan_, Following::all));
    FollowedCells used(*cells_, books_, options_for(plan_, Following::used));
    const auto start = Clock::now();
    std::size_t drilled = 0;
    for (; drilled < samples_.size(); ++drilled) {
      if (std::chrono::duration<double>(Clock::now() - start).count() > plan_.seconds) break;
      if (plan_.progress) plan_.progress(0.6 * drilled / samples_.size());
      prepare(samples_[drilled], all, used);
    }
    result_.no_time += static_cast<std::int64_t>(samples_.size() - drilled);
    samples_.resize(drilled);
    std::erase_if(samples_, [](const Sample& sample) { return !sample.active[0]; });
    result_.checked += static_cast<std::int64_t>(samples_.size());
  }

  void prepare(Sample& sample, FollowedCells& all, FollowedCells& used) {
    KeyNotes notes;
    world_.drawn = false;
    {
      const NoteTaking taking(notes);
      sample.value = value_of(sample);
    }
    if (world_.drawn) {
      ++result_.chance;
      return;
    }
    const Ref<host::Range> cell = workbook_->Worksheets(sample.at.sheet->name)
                                      ->Cells(sample.at.pos.row, sample.at.pos.column);
    Followed found = all.of(cell);
    if (!found.failure.empty())
      ++(found.failure.starts_with("refused") ? result_.refused : result_.reported);
    sample.followed[0] = std::move(found.cells);
    sample.failure[0] = std::move(found.failure);
    sample.active[0] = true;
    found = used.of(cell);
    result_.intelligent += found.intelligently;
    result_.whole += found.whole;
    sample.active[1] = found.intelligently;
    sample.followed[1] = std::move(found.cells);
    sample.failure[1] = std::move(found.failure);
    if (sample.active[1]) add_keys(sample, notes);
    if (counts_as_far_as_used(sample)) add_unused(sample);
  }

  void add_unused(Sample& sample) {
    for (int following = 0; following < followings; ++following) {
      std::vector<Index>& followed = sample.followed[following];
      const std::size_t before = followed.size();
      cells_->find_unused(followed);
      sample.exempt[following] += followed.size() - before;
    }
  }

  /// Wide references end for a drill where their sheet does.
  static bool counts_as_far_as_used(const Sample& sample) {
    constexpr int most_columns = 4;
    const auto& areas = sample.record->compiled->tree()->areas;
    return std::ranges::any_of(areas, [&](const formula::AreaRef& area) {
      const Rect block = area.resolve(sample.at.pos);
      return block.rows() == max_rows && block.columns() > most_columns;
    });
  }

  void add_keys(Sample& sample, const KeyNotes& notes) {
    std::vector<Index> keys;
    for (const Area& area : notes.areas) cells_->find(*area.sheet, area.rect, keys);
    if (notes.from_values) {
      ++result_.key_values;
      keys.insert(keys.end(), sample.followed[0].begin(), sample.followed[0].end());
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    std::vector<Index>& followed = sample.followed[1];
    std::erase_if(
        keys, [&](Index key) { return std::binary_search(followed.begin(), followed.end(), key); });
    sample.exempt[1] = keys.size();
    followed.insert(followed.end(), keys.begin(), keys.end());
  }

  // Changing what was not followed

  void change_round(int round) {
    constexpr Change changes[] = {Change::number, Change::error,   Change::any,
                                  Change::text,   Change::boolean, Change::blank};
    if (samples_.empty()) return;
    if (plan_.progress) plan_.progress(0.6 + 0.4 * round / plan_.rounds);
    cells_->draw(round < 6 ? changes[round] : Change::any);
    cells_->change_all();
    for (Sample& sample : samples_)
      for (int following = 0; following < followings; ++following)
        if (sample.active[following]) attempt(sample, following);
  }

  void attempt(Sample& sample, int following) {
    std::vector<Index>& followed = sample.followed[following];
    for (const Index cell : followed) cells_->restore(cell);
    Variant value = value_of(sample);
    if (!(value == sample.value)) find_culprits(sample, following, value);
    for (const Index cell : followed) cells_->change(cell);
  }

  /// Each culprit counts as followed from then on, so that others come to light.
  void find_culprits(Sample& sample, int following, Variant value) {
    ++result_.misses[following];
    sample.active[following] = false;
    std::vector<Index>& followed = sample.followed[following];
    const std::size_t before = followed.size();
    for (int i = 0; i < most_culprits && !(value == sample.value); ++i) {
      const std::optional<Index> culprit = find_culprit(sample, followed);
      if (!culprit) break;
      if (sample.first_of_pattern || i > 0) tell(sample, following, before, *culprit);
      followed.push_back(*culprit);
      cells_->restore(*culprit);
      value = value_of(sample);
    }
  }

  /// With the cells changed one after the other the value turns at one of them, which halving
  /// finds: changed up to `same` it is what it was, up to `other` it is not.
  std::optional<Index> find_culprit(const Sample& sample, std::vector<Index> followed) {
    std::sort(followed.begin(), followed.end());
    std::vector<Index> others;
    for (Index cell = 0; cell < cells_->size(); ++cell)
      if (!std::binary_search(followed.begin(), followed.end(), cell)) others.push_back(cell);
    std::size_t same = 0;
    std::size_t other = others.size();
    std::size_t changed = others.size();
    while (other - same > 1) {
      const std::size_t middle = same + (other - same) / 2;
      for (; changed > middle; --changed) cells_->restore(others[changed - 1]);
      for (; changed < middle; ++changed) cells_->change(others[changed]);
      value_after_ = value_of(sample);
      (value_after_ == sample.value ? same : other) = middle;
    }
    for (; changed > other; --changed) cells_->restore(others[changed - 1]);
    for (; changed < other; ++changed) cells_->change(others[changed]);
    value_after_ = value_of(sample);
    const bool turned = !(value_after_ == sample.value);
    for (const Index cell : others) cells_->change(cell);
    if (!turned || other == 0) return std::nullopt;
    return others[other - 1];
  }

  void tell(const Sample& sample, int following, std::size_t followed, Index culprit) {
    Miss miss;
    miss.following = static_cast<Following>(following);
    miss.cell = sample.at.sheet->name + "!" + address_of(sample.at.pos);
    sample.record->compiled->append_local(
        miss.formula, {&open_.book(), sample.at.sheet, sample.at.pos, nullptr, nullptr});
    if (sample.record->kind == FormulaKind::array)
      miss.formula = "{" + miss.formula + "} over " + address_of(sample.record->block);
    miss.value = text_of(sample.value);
    for (std::size_t i = 0; i + sample.exempt[following] < followed; ++i) {
      if (i >= most_shown) {
        miss.followed += " …";
        break;
      }
      miss.followed += (i ? " " : "") + cells_->name_of(sample.followed[following][i]);
    }
    miss.culprit = cells_->name_of(culprit);
    const TextPool& texts = cells_->place(culprit).sheet->book().texts;
    miss.culprit_before = shown(view_of(cells_->original(culprit), texts));
    miss.culprit_after = shown(view_of(cells_->drawn(culprit), texts));
    miss.value_after = text_of(value_after_);
    miss.failure = sample.failure[following];
    result_.shown.push_back(std::move(miss));
  }

  // Changing what was followed

  void measure_reach(const Sample& sample) {
    const ReferenceOwners owners(*sample.record->compiled->tree(), *sample.at.sheet, sample.at.pos);
    for (int following = 0; following < followings; ++following) {
      std::vector<Index> cells = sample.followed[following];
      if (!sample.active[following]) continue;
      cells.resize(cells.size() - sample.exempt[following]);
      chance_.shuffle(cells);
      if (cells.size() > static_cast<std::size_t>(plan_.reach_samples))
        cells.resize(plan_.reach_samples);
      for (const Index cell : cells) {
        Reach& reach = result_.reach[following][owners.of(cells_->place(cell))];
        ++reach.precedents;
        reach.unreachable += !reaches(sample, cell);
      }
    }
  }

  bool reaches(const Sample& sample, Index cell) {
    constexpr Change changes[] = {Change::error, Change::number,  Change::number, Change::text,
                                  Change::text,  Change::boolean, Change::blank,  Change::number};
    bool reached = false;
    for (const Change change : changes) {
      cells_->draw(cell, change);
      cells_->change(cell);
      reached = !(value_of(sample) == sample.value);
      if (reached) break;
    }
    cells_->restore(cell);
    return reached;
  }

  // Values

  Variant value_of(const Sample& sample) {
    const EvaluationMode mode =
        sample.record->kind == FormulaKind::array ? EvaluationMode::array : EvaluationMode::cell;
    const Operand result =
        evaluator_.evaluate(*sample.record->compiled, *sample.at.sheet, sample.at.pos, mode);
    return result.value() ? *result.value() : Variant();
  }

  static std::string text_of(const Variant& value) {
    if (!value.is_array()) return shown(view_of(value));
    std::string out = "{";
    int column = 0;
    for (const Variant& item : value.array().items()) {
      if (out.size() > 1) out += column % value.array().columns() == 0 ? ";" : ",";
      ++column;
      out += shown(view_of(item));
    }
    return out + "}";
  }

  const PerturbationPlan& plan_;
  Chance chance_;
  Ref<host::Workbook> workbook_;
  OpenBook& open_;
  const std::vector<Book*> books_;
  HeldWorld world_;
  Evaluator evaluator_;
  std::vector<Sample> samples_;
  ChangeableCells* cells_ = nullptr;
  Variant value_after_;
  PerturbationResult result_;
};

}  // namespace

void PerturbationResult::add(PerturbationResult&& other) {
  formulas += other.formulas;
  checked += other.checked;
  copies += other.copies;
  no_time += other.no_time;
  chance += other.chance;
  data_tables += other.data_tables;
  unreadable += other.unreadable;
  key_values += other.key_values;
  intelligent += other.intelligent;
  whole += other.whole;
  refused += other.refused;
  reported += other.reported;
  drill_seconds += other.drill_seconds;
  seconds += other.seconds;
  std::move(other.shown.begin(), other.shown.end(), std::back_inserter(shown));
  for (int following = 0; following < followings; ++following) {
    misses[following] += other.misses[following];
    for (const auto& [function, counts] : other.reach[following]) {
      Reach& sum = reach[following][function];
      sum.precedents += counts.precedents;
      sum.unreachable += counts.unreachable;
    }
  }
}

PerturbationResult perturb(const Ref<host::Workbook>& workbook, const PerturbationPlan& plan) {
  return Run(workbook, plan).run();
}

}  // namespace qto::embedded::conformance
