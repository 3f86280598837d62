#include <cstdio>

#include "benchmarks/plain_read.hpp"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: plain_pass FILE\n");
    return 1;
  }
  const auto totals = qto::benchmarks::plain_pass(argv[1]);
  if (!totals.failure.empty()) {
    std::fprintf(stderr, "%s: %s\n", argv[1], totals.failure.c_str());
    return 1;
  }
  std::printf("parts %lld\nbytes %lld\nseconds %.3f\n", static_cast<long long>(totals.parts),
              static_cast<long long>(totals.bytes), totals.seconds);
}
