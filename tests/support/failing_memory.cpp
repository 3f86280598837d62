#include "tests/support/failing_memory.hpp"

#include <cstdlib>
#include <new>

namespace qto::test {
namespace {

thread_local constinit std::int64_t left = 0;  // 0: every allocation is made
thread_local constinit bool out_of_memory = false;

}  // namespace

FailingMemory::FailingMemory(std::int64_t n) noexcept {
  out_of_memory = false;
  left = n;
}
FailingMemory::~FailingMemory() { left = 0; }
bool FailingMemory::failed() noexcept { return out_of_memory; }

static void* allocate(std::size_t size) {
  if (left > 0 && --left == 0) {
    left = 1;
    out_of_memory = true;
    throw std::bad_alloc();
  }
  if (void* memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}

}  // namespace qto::test

void* operator new(std::size_t size) { return qto::test::allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return qto::test::allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
