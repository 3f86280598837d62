#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace qto::cli {

/// Says on standard error what goes on, once it has taken more than a second; silent unless that is
/// a terminal. A thread of its own writes, so counting costs the work next to nothing.
class Progress {
 public:
  Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  /// A new stage of the work ("opening plan.xlsx"); its count begins at 0.
  void stage(std::string what);
  void count_one() noexcept { count(1); }
  void count(std::size_t done) noexcept {
    count_.fetch_add(static_cast<std::int64_t>(done), std::memory_order_relaxed);
  }
  /// Takes the line away: something else is to be written. The next stage shows again.
  void hide();

 private:
  void watch();
  void clear_line();

  std::atomic<std::int64_t> count_{0};
  std::mutex mutex_;
  std::condition_variable wake_;
  std::string what_;
  bool line_shown_ = false;
  bool stop_ = false;
  std::thread writer_;
};

}  // namespace qto::cli
