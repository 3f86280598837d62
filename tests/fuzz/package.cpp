#include "qto/hosts/embedded/xlsx/open_workbook.hpp"
#include "tests/fuzz/memory_file.hpp"

/// Any bytes as a workbook file: it opens, or says why not.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const qto::fuzz::MemoryFile file(data, size);
  qto::embedded::OpenOptions options;
  options.limits.inflated_bytes = 16 << 20;
  options.limits.cell_bytes = 64 << 20;
  options.limits.array_cells = 100'000;
  try {
    qto::embedded::open_workbook(file.path(), options);
  } catch (const qto::embedded::OpenFailure&) {
  }
  return 0;
}
