#include "qto/hosts/embedded/xlsx/part_reader.hpp"

#include <system_error>

#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {

PartReader::PartReader(PartStream& stream) : stream_(stream) {
  ring_[0].bytes.resize(piece_bytes);
  if (stream.size() <= pieces * piece_bytes) return;
  for (Piece& piece : ring_) piece.bytes.resize(piece_bytes);
  try {
    thread_ = std::thread([this] { run_ahead(); });
  } catch (const std::system_error&) {
    // No thread to be had: the part is read in turns then.
  }
}

PartReader::~PartReader() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    stop_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void PartReader::run_ahead() {
  for (std::size_t number = 0;; ++number) {
    {
      std::unique_lock lock(mutex_);
      // The piece handed out last is still in use.
      changed_.wait(lock, [&] { return stop_ || number < taken_ + pieces - 1; });
      if (stop_) return;
    }
    Piece& piece = ring_[number % pieces];
    std::exception_ptr failure;
    try {
      piece.size = stream_.read(piece.bytes.data(), piece.bytes.size());
    } catch (...) {
      failure = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    failure_ = failure;
    done_ = failure || piece.size == 0;
    filled_ = number + 1;
    changed_.notify_all();
    if (done_) return;
  }
}

std::string_view PartReader::take_piece() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return done_ || filled_ > taken_; });
  // After the end nothing is filled any more; a failure belongs to the last piece.
  if (taken_ + 1 >= filled_ && done_) {
    if (failure_) std::rethrow_exception(failure_);
    return {};
  }
  const Piece& piece = ring_[taken_++ % pieces];
  changed_.notify_all();
  return {piece.bytes.data(), piece.size};
}

std::string_view PartReader::next() {
  std::string_view bytes;
  if (thread_.joinable()) {
    bytes = take_piece();
  } else {
    Piece& piece = ring_[0];
    bytes = {piece.bytes.data(), stream_.read(piece.bytes.data(), piece.bytes.size())};
  }
  stream_.account(bytes.size());
  return bytes;
}

}  // namespace qto::embedded
