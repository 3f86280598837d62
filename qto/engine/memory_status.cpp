#include "qto/engine/memory_status.hpp"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "qto/diagnostics/procedure.hpp"

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace qto {

#ifdef _WIN32

std::int64_t available_memory() noexcept {
  Procedure proc("DrillDown", "available_memory");
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  if (!GlobalMemoryStatusEx(&status)) return 0;
  return static_cast<std::int64_t>(status.ullAvailPhys + status.ullAvailVirtual);
}

#else

/// The machine's memory less what this process holds: other programs must not show in the figure.
std::int64_t available_memory() noexcept {
  Procedure proc("DrillDown", "available_memory");
  const std::int64_t page = sysconf(_SC_PAGESIZE);
  long long size = 0;
  long long resident = 0;
  if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(file, "%lld %lld", &size, &resident) != 2) resident = 0;
    std::fclose(file);
  }
  return (std::int64_t{sysconf(_SC_PHYS_PAGES)} - resident) * page;
}

#endif

std::int32_t saturated(std::int64_t bytes) noexcept {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(
      bytes, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

}  // namespace qto
