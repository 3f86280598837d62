#include <pthread.h>

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

void end_thread(void*) { end_apartment(); }

/// Unlike a destructor of the thread's own it does not keep the library from being unloaded.
class ThreadEnd {
 public:
  ThreadEnd() noexcept : made_(pthread_key_create(&key_, end_thread) == 0) {}
  ~ThreadEnd() {
    if (made_) pthread_key_delete(key_);
  }
  ThreadEnd(const ThreadEnd&) = delete;
  ThreadEnd& operator=(const ThreadEnd&) = delete;
  /// The value only has to be none that stands for nothing.
  bool watch() const noexcept { return made_ && pthread_setspecific(key_, this) == 0; }

 private:
  pthread_key_t key_{};
  const bool made_;
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
  static const ThreadEnd thread_end;
  Note* note = thread_end.watch() ? new (std::nothrow) Note{end, state, last_note} : nullptr;
  if (note) last_note = note;
}

}  // namespace qto
