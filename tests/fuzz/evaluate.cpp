#include <string>

#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"

/// Any text as a formula, evaluated on a sheet with a few values.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace qto;
  static const auto sheet = [] {
    static embedded::Application application;
    application.set_now(45352.5);
    const auto first = application.Workbooks()->Add()->Worksheets(1);
    const char* const typed[] = {"1", "-2.5", "text", "TRUE", "=1/0", "1E300", "2024-03-01", ""};
    for (int row = 1; row <= 8; ++row) first->Cells(row, 1)->put_Formula(typed[row - 1]);
    return first;
  }();
  if (size > 400) return -1;
  try {
    sheet->Evaluate(std::string(reinterpret_cast<const char*>(data), size));
  } catch (const host::HostFailure&) {
  }
  return 0;
}
