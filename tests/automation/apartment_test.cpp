#include "qto/automation/apartment.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace qto {
namespace {

std::atomic<int> ended = 0;

struct Counted {
  int value = 0;
  ~Counted() { ++ended; }
};

/// Asks for the other state while it ends.
struct Late {
  ~Late();
};

thread_local constinit ApartmentState<Counted> counted;
thread_local constinit ApartmentState<Late> late;

Late::~Late() { counted.get().value = 1; }

#ifdef _WIN32
/// There the run-time library takes down what belongs to its own threads before the system tells of
/// their end; apartments of clients are threads of the system.
#define NEEDS_THE_END_OF_A_THREAD() GTEST_SKIP() << "threads of the run-time library end untold"
#else
#define NEEDS_THE_END_OF_A_THREAD() static_cast<void>(0)
#endif

TEST(Apartment, ItsStateIsItsOwnAndEndsWithItsThread) {
  NEEDS_THE_END_OF_A_THREAD();
  counted.get().value = 5;
  ended = 0;
  std::thread([] {
    EXPECT_EQ(counted.get().value, 0);
    counted.get().value = 7;
    EXPECT_EQ(counted.get().value, 7);
  }).join();
  EXPECT_EQ(ended, 1);
  EXPECT_EQ(counted.get().value, 5);
}

TEST(Apartment, AStateThatIsAskedForAtTheEndEndsAsWell) {
  NEEDS_THE_END_OF_A_THREAD();
  ended = 0;
  std::thread([] {
    late.get();
    counted.get();
  }).join();
  EXPECT_EQ(ended, 2);
}

}  // namespace
}  // namespace qto
