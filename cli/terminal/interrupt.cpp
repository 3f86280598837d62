#include "cli/terminal/interrupt.hpp"

#include <csignal>

namespace qto::cli {
namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void note_interrupt(int) {
  interrupted = 1;
  std::signal(SIGINT, SIG_DFL);
}

}  // namespace

Interrupt::Interrupt() noexcept {
  interrupted = 0;
  before_ = std::signal(SIGINT, note_interrupt);
}

Interrupt::~Interrupt() { std::signal(SIGINT, before_); }

bool Interrupt::raised() noexcept { return interrupted != 0; }

}  // namespace qto::cli
