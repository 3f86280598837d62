#include "cli/interrupt.hpp"

namespace qto::cli {
namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void note_interrupt(int) { interrupted = 1; }

}  // namespace

Interrupt::Interrupt() noexcept {
  interrupted = 0;
  struct sigaction action {};
  action.sa_handler = note_interrupt;
  action.sa_flags = SA_RESETHAND;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, &before_);
}

Interrupt::~Interrupt() { sigaction(SIGINT, &before_, nullptr); }

bool Interrupt::raised() noexcept { return interrupted != 0; }

}  // namespace qto::cli
