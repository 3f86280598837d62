#include "cli/terminal/progress.hpp"

#include <fmt/format.h>

#include <chrono>
#include <utility>

#include "cli/terminal/terminal.hpp"

namespace qto::cli {

using namespace std::chrono_literals;

Progress::Progress() {
  if (is_terminal(Stream::errors)) writer_ = std::thread([this] { watch(); });
}

Progress::~Progress() {
  hide();
  if (!writer_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    stop_ = true;
  }
  wake_.notify_one();
  writer_.join();
}

void Progress::stage(std::string what) {
  const std::lock_guard lock(mutex_);
  clear_line();
  count_ = 0;
  what_ = std::move(what);
}

void Progress::hide() { stage(""); }

void Progress::clear_line() {
  if (std::exchange(line_shown_, false)) fmt::print(stderr, "\r\x1b[K");
}

void Progress::watch() {
  std::unique_lock lock(mutex_);
  // Short work shows nothing at all.
  auto pause = 1000ms;
  while (!wake_.wait_for(lock, pause, [this] { return stop_; })) {
    pause = 200ms;
    if (what_.empty()) continue;
    const std::int64_t count = count_.load(std::memory_order_relaxed);
    fmt::print(stderr, "\r\x1b[Kqto: {}", what_);
    if (count > 0) fmt::print(stderr, ", {} cells so far", count);
    std::fflush(stderr);
    line_shown_ = true;
  }
}

}  // namespace qto::cli
