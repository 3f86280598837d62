#include <windows.h>

#include <new>

#include "qto/automation/apartment.hpp"

namespace qto {
namespace {

struct Note {
  void (*end)(void*);
  void* state;
  Note* earlier;
};

thread_local constinit Note* last_note = nullptr;
constinit bool unloading = false;

void WINAPI end_thread(void*) {
  if (!unloading) end_apartment();
}

/// Unlike a destructor of the thread's own it does not keep the library from being unloaded.
class ThreadEnd {
 public:
  ThreadEnd() noexcept : index_(FlsAlloc(end_thread)) {}
  ~ThreadEnd() {
    unloading = true;
    if (index_ != FLS_OUT_OF_INDEXES) FlsFree(index_);
  }
  ThreadEnd(const ThreadEnd&) = delete;
  ThreadEnd& operator=(const ThreadEnd&) = delete;
  /// The value only has to be none that stands for nothing.
  bool watch() noexcept { return index_ != FLS_OUT_OF_INDEXES && FlsSetValue(index_, this); }

 private:
  const DWORD index_;
};

}  // namespace

void end_apartment() noexcept {
  // A state that ends may ask for another once more.
  while (Note* note = last_note) {
    last_note = note->earlier;
    note->end(note->state);
    delete note;
  }
}

void at_apartment_end(void (*end)(void*), void* state) noexcept {
  static ThreadEnd thread_end;
  Note* note = thread_end.watch() ? new (std::nothrow) Note{end, state, last_note} : nullptr;
  if (note) last_note = note;
}

}  // namespace qto
