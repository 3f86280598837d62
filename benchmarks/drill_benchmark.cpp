// Opening, the circularity test and FindInputs on the large generated books, against the plain pass
// over the same file. tools/bench.py generates the books into build/bench.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>

#include "benchmarks/plain_read.hpp"
#include "benchmarks/stopwatch.hpp"
#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"

namespace {

using qto::benchmarks::Clock, qto::benchmarks::seconds_since;

struct BookCase {
  const char* file;
  const char* sheet;
  const char* start;
};
constexpr BookCase chain{"chain.xlsx", "Sheet1", "B1000000"};
constexpr BookCase grid{"grid.xlsx", "Sheet1", "ALL1000"};
constexpr BookCase fan{"fan.xlsx", "Sums", "B1"};
constexpr BookCase model{"model.xlsx", "Total", "B1"};

std::string path_of(const BookCase& book) {
  return std::string(QTO_SOURCE_DIR) + "/build/bench/" + book.file;
}

bool skip_without(const BookCase& book, benchmark::State& state) {
  if (std::filesystem::exists(path_of(book))) return false;
  state.SkipWithError("no such book; run tools/bench.py once to generate it");
  return true;
}

/// Best of three, measured once per book.
double plain_seconds(const BookCase& book) {
  static std::map<std::string, double> known;
  double& best = known[book.file];
  for (int i = 0; best == 0 || i < 3; ++i) {
    const double seconds = qto::benchmarks::plain_pass(path_of(book)).seconds;
    best = best == 0 ? seconds : std::min(best, seconds);
  }
  return best;
}

void open_book(benchmark::State& state, const BookCase& book) {
  if (skip_without(book, state)) return;
  double best = 1e9;
  for (auto _ : state) {
    const auto start = Clock::now();
    qto::embedded::Application app;
    benchmark::DoNotOptimize(app.Workbooks()->Open(path_of(book)));
    best = std::min(best, seconds_since(start));
  }
  state.counters["times_plain_pass"] = best / plain_seconds(book);
}

void circularity(benchmark::State& state, const BookCase& book) {
  if (skip_without(book, state)) return;
  double best = 1e9;
  for (auto _ : state) {
    state.PauseTiming();
    qto::embedded::Application app;
    const auto opened = app.Workbooks()->Open(path_of(book));
    state.ResumeTiming();
    const auto start = Clock::now();
    benchmark::DoNotOptimize(opened->Worksheets(book.sheet)->CircularReference());
    best = std::min(best, seconds_since(start));
  }
  state.counters["times_plain_pass"] = best / plain_seconds(book);
}

void find_inputs(benchmark::State& state, const BookCase& book) {
  if (skip_without(book, state)) return;
  qto::embedded::Application app;
  const auto opened = app.Workbooks()->Open(path_of(book));
  const auto start_cell = opened->Worksheets(book.sheet)->Range(book.start);
  opened->Worksheets(book.sheet)->CircularReference();  // once per state of the book, not per drill
  double best = 1e9;
  double parts = 1;
  double bytes = 0;
  for (auto _ : state) {
    const auto before = mallinfo2();
    auto drill = qto::make_ref<qto::DrillDown>();
    drill->putref_StartUnderlyingObject(start_cell);
    std::int32_t formulas = 0;
    drill->BeforeGetPrecedents.add([&](qto::Ref<qto::ModelPart>&, bool&) { ++formulas; });
    const auto start = Clock::now();
    drill->FindInputs();
    best = std::min(best, seconds_since(start));
    parts = formulas + drill->InputCells()->Count();
    const auto after = mallinfo2();
    bytes = static_cast<double>(after.uordblks + after.hblkhd) -
            static_cast<double>(before.uordblks + before.hblkhd);
    benchmark::DoNotOptimize(drill->InputCells()->Count());
  }
  state.counters["parts"] = parts;
  state.counters["ns_per_part"] = best * 1e9 / parts;
  state.counters["bytes_per_part"] = bytes / parts;
  state.counters["times_plain_pass"] = best / plain_seconds(book);
}

#define QTO_ON_BOOK(function, book)       \
  BENCHMARK_CAPTURE(function, book, book) \
      ->Unit(benchmark::kMillisecond)     \
      ->Iterations(3)                     \
      ->UseRealTime()

QTO_ON_BOOK(open_book, chain);
QTO_ON_BOOK(open_book, grid);
QTO_ON_BOOK(open_book, fan);
QTO_ON_BOOK(open_book, model);
QTO_ON_BOOK(circularity, chain);
QTO_ON_BOOK(circularity, grid);
QTO_ON_BOOK(find_inputs, chain);
QTO_ON_BOOK(find_inputs, grid);

}  // namespace
