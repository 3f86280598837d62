// Brings no spreadsheet application along: a drill without a start is refused, and says so.

#include <cstdio>

#include "qto/qto.hpp"

int main() {
  try {
    qto::make_ref<qto::DrillDown>()->FindInputs();
  } catch (const qto::AutomationError& error) {
    std::printf("%08X\n", static_cast<unsigned>(error.number));
  }
  return 0;
}
