// Tries the drilling of formulas on whole workbooks: what it decides, and whether it misses
// anything that a value rests on. Ends with 1 when it does.

#include <CLI/CLI.hpp>
#include <iostream>

#include "qto/hosts/embedded/application.hpp"
#include "tests/conformance/drill_counts.hpp"
#include "tests/conformance/perturbation/generated_book.hpp"
#include "tests/conformance/perturbation/properties.hpp"
#include "tests/conformance/perturbation/report.hpp"
#include "tests/conformance/perturbation/shrink.hpp"

namespace {

using namespace qto;
using namespace qto::embedded::conformance;

constexpr double moment = 45352.5;  // of every calculation

struct Wanted {
  std::vector<std::string> files;
  bool list = false;
  bool perturb = false;
  bool script = false;
  bool properties = false;
  int generate = 0;
  PerturbationPlan plan;
};

void read_arguments(CLI::App& command, Wanted& wanted) {
  command.add_option("files", wanted.files, "workbooks");
  command.add_flag("--list", wanted.list, "each formula that could not be decided");
  command.add_flag("--perturb", wanted.perturb,
                   "change cells that were not followed, and expect the same values");
  command.add_option("--generate", wanted.generate, "the same with so many generated books");
  command.add_flag("--properties", wanted.properties,
                   "drill from every formula of generated books as well, and compare the walks");
  command.add_flag("--script", wanted.script, "print what generated books hold");
  command
      .add_option("--per-pattern", wanted.plan.per_pattern,
                  "formulas tried among copies of each other; 0: all")
      ->capture_default_str();
  command.add_option("--limit-seconds", wanted.plan.seconds, "for the drilling of one book")
      ->capture_default_str();
  command.add_option("--rounds", wanted.plan.rounds, "changes of all cells at once")
      ->capture_default_str();
  const std::map<std::string, qtoReading> readings{{"exact", qtoReadExact},
                                                   {"written", qtoReadAsWritten}};
  command.add_option("--reading", wanted.plan.reading, "how formulas are read")
      ->transform(CLI::CheckedTransformer(readings));
  command.add_option("--seed", wanted.plan.seed, "of what is drawn")->capture_default_str();
}

void perturb_file(const std::string& file, const PerturbationPlan& plan,
                  PerturbationResult& total) {
  try {
    embedded::Application application;
    application.set_now(moment);
    const Ref<host::Workbook> book = application.Workbooks()->Open(file);
    PerturbationResult result = perturb(book, plan);
    print_line(std::cout, file, result);
    for (const Miss& miss : result.shown) print(std::cout, miss);
    total.add(std::move(result));
  } catch (const std::exception& failure) {
    std::cout << file << ": " << failure.what() << std::endl;
  }
}

bool of_one_drill(const Miss& one, const Miss& other) {
  return one.cell == other.cell && one.following == other.following;
}

std::size_t tell_broken_properties(const GeneratedBook& book, std::uint64_t seed) {
  const std::vector<std::string> broken = broken_properties(book);
  for (const std::string& property : broken)
    std::cout << "seed " << seed << "\n  BROKEN " << property << std::endl;
  return broken.size();
}

/// How many properties were broken.
std::size_t perturb_generated(const Wanted& wanted, PerturbationResult& total) {
  std::size_t broken = 0;
  PerturbationPlan plan = wanted.plan;
  for (int i = 0; i < wanted.generate; ++i, ++plan.seed) {
    GeneratedBook book(plan.seed);
    if (wanted.script) std::cout << book.script();
    PerturbationResult result = perturb(book.workbook(), plan);
    if (!result.shown.empty()) {
      print_line(std::cout, "seed " + std::to_string(plan.seed), result);
      for (std::size_t m = 0; m < result.shown.size(); ++m)
        if (m == 0 || !of_one_drill(result.shown[m - 1], result.shown[m]))
          print(std::cout, shrunk(book, result.shown[m], plan));
    }
    if (wanted.properties) broken += tell_broken_properties(book, plan.seed);
    if (i % 100 == 99)
      std::cerr << i + 1 << " books, misses " << total.misses[0] << " (all) " << total.misses[1]
                << " (used)" << std::endl;
    total.add(std::move(result));
  }
  return broken;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App command("Tries the drilling of formulas on whole workbooks.");
  Wanted wanted;
  read_arguments(command, wanted);
  CLI11_PARSE(command, argc, argv);
  if (!wanted.perturb && wanted.generate == 0) {
    count_drills(wanted.files, wanted.list);
    return 0;
  }
  PerturbationResult total;
  for (const std::string& file : wanted.files) perturb_file(file, wanted.plan, total);
  const std::size_t broken = perturb_generated(wanted, total);
  print_totals(std::cout, total);
  if (wanted.properties) std::cout << "properties broken           " << broken << '\n';
  return total.misses[0] + total.misses[1] == 0 && broken == 0 ? 0 : 1;
}
