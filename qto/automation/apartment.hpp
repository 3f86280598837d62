#pragma once

#include <utility>

/// An apartment is a thread and the objects that it made. Objects of one apartment share state
/// without a guard; two apartments share none, so that they may work at once.
namespace qto {

/// Calls `end(state)` when the calling thread ends, the last one first. A thread that ends with the
/// process ends no apartment: what it keeps may refer to libraries that are gone by then. Without
/// memory for the note the state stays for good; so it does on Windows for threads that the
/// run-time library of C++ started, whose data go before their end is told.
void at_apartment_end(void (*end)(void* state), void* state) noexcept;

/// Ends the calling thread's apartment before its time: a library of which nothing is in use is
/// about to be unloaded. What is asked for afterwards is made anew.
void end_apartment() noexcept;

/// A place for what the objects of an apartment share; declared as
///
///     thread_local constinit ApartmentState<State> slot;
///
/// The state is made when first asked for, and deleted when its thread ends.
template <class State>
class ApartmentState {
 public:
  State& get() {
    if (!state_) make();
    return *state_;
  }

 private:
  void make() {
    state_ = new State;
    at_apartment_end(
        [](void* slot) {
          delete std::exchange(static_cast<ApartmentState*>(slot)->state_, nullptr);
        },
        this);
  }

  State* state_ = nullptr;  // no destructor: a library whose threads live on could not be unloaded
};

}  // namespace qto
