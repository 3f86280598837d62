#include <string>

#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"

namespace {

using namespace qto;

template <class Action>
void tried(Action&& action) {
  try {
    action();
  } catch (const AutomationError&) {
  } catch (const host::HostFailure&) {
  }
}

}  // namespace

/// A small book, one cell a line from A1 downwards, is drilled from each of its formulas.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 1000) return -1;
  std::string_view text(reinterpret_cast<const char*>(data), size);
  embedded::Application application;
  const auto book = application.Workbooks()->Add();
  const auto sheet = book->Worksheets(1);
  int rows = 0;
  while (!text.empty() && rows < 12) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    ++rows;
    tried([&] { sheet->Cells(rows, 1)->put_Formula(line); });
  }
  for (int row = 1; row <= rows; ++row)
    for (int depth = 0; depth < 2; ++depth)
      tried([&] {
        const auto drill = make_ref<DrillDown>();
        drill->put_MaxItems(2000);
        drill->put_MaximumDepth(depth * 3);
        drill->putref_StartUnderlyingObject(sheet->Cells(row, 1));
        drill->FindInputs();
        drill->TraceError();
      });
  return 0;
}
