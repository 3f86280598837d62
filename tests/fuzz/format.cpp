#include <cmath>
#include <string>

#include "qto/hosts/embedded/formats/number_format.hpp"
#include "qto/hosts/embedded/formats/parse_number.hpp"

/// Any text as a number format, over numbers of every kind, and as a number.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace qto::embedded::formats;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const NumberFormat format = NumberFormat::parse(text);
  for (const double value : {0.0, -1.5, 1e300, -1e-300, 45352.75, 2958465.999999, 0.1 + 0.2,
                             std::nan(""), HUGE_VAL, 123456789012345678.0})
    for (const bool date1904 : {false, true}) {
      format.format(value, date1904);
      cell_text(format, value, date1904, 8.43);
    }
  format.format_text(text);
  parse_number(text, false, 2024);
  return 0;
}
