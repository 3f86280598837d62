#include "tests/conformance/perturbation/report.hpp"

#include <algorithm>
#include <iomanip>

namespace qto::embedded::conformance {
namespace {

const char* name_of(Following following) { return following == Following::all ? "all" : "used"; }

void print_reach(std::ostream& out, const std::map<std::string, Reach>& by_function,
                 Following following) {
  std::vector<std::pair<std::string, Reach>> rows(by_function.begin(), by_function.end());
  std::stable_sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) {
    return a.second.precedents > b.second.precedents;
  });
  out << "precedents that no change reached, following " << name_of(following) << ":\n";
  for (const auto& [function, reach] : rows)
    out << "  " << std::left << std::setw(34) << function << std::right << std::setw(8)
        << reach.unreachable << " of " << reach.precedents << '\n';
}

}  // namespace

void print(std::ostream& out, const Miss& miss) {
  out << "  MISS (" << name_of(miss.following) << ") " << miss.cell << "  "
      << miss.formula.substr(0, 400) << "\n    was " << miss.value << ", is " << miss.value_after
      << " when " << miss.culprit << " turns from " << miss.culprit_before << " to "
      << miss.culprit_after
      << "\n    followed: " << (miss.followed.empty() ? "nothing" : miss.followed) << '\n';
  if (!miss.failure.empty()) out << "    the drill: " << miss.failure << '\n';
}

void print_line(std::ostream& out, std::string_view book, const PerturbationResult& result) {
  out << book << ": " << result.checked << " of " << result.formulas << " formulas, misses "
      << result.misses[0] << " (all) " << result.misses[1] << " (used), " << std::fixed
      << std::setprecision(1) << result.seconds << " s" << std::endl;
}

void print_totals(std::ostream& out, const PerturbationResult& total) {
  out << "\nformula cells               " << total.formulas << "\n  checked                   "
      << total.checked << "\n  copies of checked ones    " << total.copies
      << "\n  no time                   " << total.no_time << "\n  draw numbers              "
      << total.chance << "\n  in data tables            " << total.data_tables
      << "\n  unreadable                " << total.unreadable << "\ndrilled intelligently       "
      << total.intelligent << "\n  with keys made by functions " << total.key_values
      << "\n  with a call followed whole " << total.whole << "\ndrills refused              "
      << total.refused << "\ndrills with reports         " << total.reported
      << "\nmisses, following all       " << total.misses[0] << "\nmisses, following used      "
      << total.misses[1] << "\nseconds                     " << std::fixed << std::setprecision(1)
      << total.seconds << " (" << total.drill_seconds << " of them drilling)\n\n";
  print_reach(out, total.reach[0], Following::all);
  print_reach(out, total.reach[1], Following::used);
}

}  // namespace qto::embedded::conformance
