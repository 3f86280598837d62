#pragma once

namespace qto::cli {

/// While it lives, the first Ctrl-C only sets a flag; a second one ends the process as usual.
class Interrupt {
 public:
  Interrupt() noexcept;
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;
  ~Interrupt();
  static bool raised() noexcept;

 private:
  void (*before_)(int) = nullptr;
};

}  // namespace qto::cli
