// Asks the installed library where the error of the example's covenant comes from.

#include <cstdio>

#include "qto/qto.hpp"

int main(int argc, char** argv) {
  if (argc != 2) return 1;
  qto::embedded::Application application;
  const auto book = application.Workbooks()->Open(argv[1]);
  const auto drill = qto::make_ref<qto::DrillDown>();
  drill->putref_StartUnderlyingObject(book->Worksheets("Summary")->Range("B15"));
  drill->TraceError();
  drill->ErrorCells()->for_each([](qto::ModelPart& origin) {
    std::printf("%s!%s\n", origin.WorkSheetName().c_str(), origin.AddressShort().c_str());
  });
  return 0;
}
