#include <cstdlib>
#include <string>

#include "qto/automation/address.hpp"

/// Any text as an address; what is one reads the same when it is written again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace qto;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto cell = parse_cell(text)) {
    const auto again = parse_cell(address_of(cell->pos));
    if (!again || again->pos != cell->pos) std::abort();
  }
  if (const auto area = parse_area(text)) {
    const auto again = parse_area(address_of(area->rect()));
    if (!again || again->rect() != area->rect()) std::abort();
  }
  std::string out;
  append_sheet_name(out, text);
  return 0;
}
