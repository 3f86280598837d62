#include <new>
#include <vector>

#include "qto/automation/apartment.hpp"

namespace qto {
namespace {

/// The run time ends the threads' objects of a library before it is unloaded.
struct Notes {
  struct Note {
    void (*end)(void*);
    void* state;
  };
  std::vector<Note> all;
  ~Notes() {
    // A state that ends may ask for another once more.
    while (!all.empty()) {
      const Note note = all.back();
      all.pop_back();
      note.end(note.state);
    }
  }
};

thread_local Notes notes;

}  // namespace

void at_apartment_end(void (*end)(void*), void* state) noexcept {
  try {
    notes.all.push_back({end, state});
  } catch (const std::bad_alloc&) {
  }
}

}  // namespace qto
