#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

namespace qto::embedded {

class PartStream;

/// Hands out a part piece by piece. A large part is inflated on a thread of its own, while what
/// came before is being tokenized: the two cost about the same on a machine with a second core.
class PartReader {
 public:
  explicit PartReader(PartStream& stream);
  ~PartReader();
  PartReader(const PartReader&) = delete;
  PartReader& operator=(const PartReader&) = delete;

  /// The next bytes, valid until the next call; none at the end. Throws what reading threw.
  std::string_view next();

 private:
  static constexpr std::size_t piece_bytes = std::size_t{1} << 17;
  static constexpr std::size_t pieces = 4;
  struct Piece {
    std::vector<char> bytes;
    std::size_t size = 0;
  };

  void run_ahead();
  std::string_view take_piece();

  PartStream& stream_;
  std::array<Piece, pieces> ring_;
  std::thread thread_;
  std::mutex mutex_;
  std::condition_variable changed_;
  // Guarded by the mutex; pieces are numbered from the start of the part.
  std::size_t filled_ = 0;
  std::size_t taken_ = 0;
  bool done_ = false;
  bool stop_ = false;
  std::exception_ptr failure_;
};

}  // namespace qto::embedded
