#pragma once

#include <cstdio>

/// Checks for programs that run under Wine: every one is written out, and the last line tells how
/// many failed.
inline int failed_checks = 0;

inline void check(bool good, const char* what, int line) {
  if (good) return;
  std::printf("line %d: %s\n", line, what);
  ++failed_checks;
}
#define CHECK(...) check(static_cast<bool>(__VA_ARGS__), #__VA_ARGS__, __LINE__)

/// The program's end: the line that its test looks for, and its exit status.
inline int finish() {
  if (failed_checks == 0) std::puts("all checks passed");
  std::fflush(stdout);
  return failed_checks != 0;
}
