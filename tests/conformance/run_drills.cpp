// Tries the drilling of formulas on whole workbooks: what it decides, and whether it misses
// anything that a value rests on. Ends with 1 when it does.

#include <CLI/CLI.hpp>
#include <iostream>

#include "qto/hosts/embedded/application.hpp"
#include "tests/conformance/drill_counts.hpp"
#include "tests/conformance/perturbation/report.hpp"

namespace {

using namespace qto;
using namespace qto::embedded::conformance;

constexpr double moment = 45352.5;  // of every calculation

struct Wanted {
  std::vector<std::string> files;
  bool list = false;
  bool perturb = false;
  PerturbationPlan plan;
};

void read_arguments(CLI::App& command, Wanted& wanted) {
  command.add_option("files", wanted.files, "workbooks");
  command.add_flag("--list", wanted.list, "each formula that could not be decided");
  command.add_flag("--perturb", wanted.perturb,
                   "change cells that were not followed, and expect the same values");
  command
      .add_option("--per-pattern", wanted.plan.per_pattern,
                  "formulas tried among copies of each other; 0: all")
      ->capture_default_str();
  command.add_option("--limit-seconds", wanted.plan.seconds, "for the drilling of one book")
      ->capture_default_str();
  command.add_option("--rounds", wanted.plan.rounds, "changes of all cells at once")
      ->capture_default_str();
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

}  // namespace

int main(int argc, char** argv) {
  CLI::App command("Tries the drilling of formulas on whole workbooks.");
  Wanted wanted;
  read_arguments(command, wanted);
  CLI11_PARSE(command, argc, argv);
  if (!wanted.perturb) {
    count_drills(wanted.files, wanted.list);
    return 0;
  }
  PerturbationResult total;
  for (const std::string& file : wanted.files) perturb_file(file, wanted.plan, total);
  print_totals(std::cout, total);
  return total.misses[0] + total.misses[1] == 0 ? 0 : 1;
}
