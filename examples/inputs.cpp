// Prints the input cells that a cell rests on.
//
//   example_inputs examples/workbooks/plan.xlsx Summary F2

#include <cstdio>

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
  options->put_ShowBlanks(false);
  options->put_ParseIf(qto::qtodrillconditionandused);

  const auto drill = qto::make_ref<qto::DrillDown>();
  drill->putref_DrillOptions(options);
  drill->putref_StartUnderlyingObject(book->Worksheets(argv[2])->Range(argv[3]));
  drill->FindInputs();

  drill->InputCells()->for_each([](qto::ModelPart& input) {
    input.SetResultsValues();
    // A formula counts as an input when a constant is written inside it.
    const bool formula = input.DirectPrecedents() != nullptr;
    std::printf("%s  %s  %s%s\n", input.AddressLong(qto::qtoaddressSheet).c_str(),
                input.Title().c_str(), input.Text().c_str(),
                formula ? ("  " + input.Formula()).c_str() : "");
  });
  return 0;
} catch (const qto::AutomationError& refusal) {
  std::fprintf(stderr, "refused: %08X\n", static_cast<unsigned>(refusal.number));
  return 1;
} catch (const std::exception& failure) {
  std::fprintf(stderr, "%s\n", failure.what());
  return 1;
}
