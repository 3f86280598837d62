// Prints what feeds a cell, level by level.
//
//   example_precedents examples/workbooks/plan.xlsx Summary C7

#include <cstdio>
#include <set>
#include <utility>
#include <vector>

#include "qto/automation/error.hpp"
#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"

int main(int argc, char** argv) try {
  if (argc != 4) return std::fprintf(stderr, "usage: %s BOOK SHEET CELL\n", argv[0]), 1;
  qto::embedded::Application application;
  const auto book = application.Workbooks()->Open(argv[1]);

  const auto options = qto::make_ref<qto::DrillOptions>();
  options->put_Reading(qto::qtoReadExact);

  const auto drill = qto::make_ref<qto::DrillDown>();
  drill->putref_DrillOptions(options);
  drill->putref_StartUnderlyingObject(book->Worksheets(argv[2])->Range(argv[3]));
  drill->put_MaximumDepth(4);
  drill->DrillHere();

  // A part hangs below every formula that uses it; an explicit stack prints each of them once.
  std::set<const qto::ModelPart*> printed;
  std::vector<std::pair<qto::Ref<qto::ModelPart>, int>> stack{{drill->StartModelPart(), 0}};
  while (!stack.empty()) {
    const auto [part, depth] = std::move(stack.back());
    stack.pop_back();
    if (!printed.insert(part.get()).second) continue;
    part->SetResultsValues();
    std::printf("%*s%s  %s  %s\n", 2 * depth, "", part->AddressLong(qto::qtoaddressSheet).c_str(),
                part->Title().c_str(), part->Text().c_str());
    const auto& precedents = part->DirectPrecedents();
    for (int i = precedents ? precedents->Count() : 0; i >= 1; --i)
      stack.emplace_back(precedents->Item(i), depth + 1);
  }
  return 0;
} catch (const qto::AutomationError& refusal) {
  std::fprintf(stderr, "refused: %08X\n", static_cast<unsigned>(refusal.number));
  return 1;
} catch (const std::exception& failure) {
  std::fprintf(stderr, "%s\n", failure.what());
  return 1;
}
