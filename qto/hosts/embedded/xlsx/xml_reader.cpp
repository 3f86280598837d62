#include "qto/hosts/embedded/xlsx/xml_reader.hpp"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "qto/hosts/embedded/xlsx/package.hpp"
#include "qto/hosts/embedded/xlsx/xml_tokenizer.hpp"

namespace qto::embedded {
namespace {

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

}  // namespace

void read_xml(PartStream& stream, XmlHandler& handler) {
  XmlEvents events(handler, stream.package().limits());
  XmlTokenizer tokenizer(events);
  PartReader reader(stream);
  try {
    for (;;) {
      const std::string_view bytes = reader.next();
      if (bytes.empty()) break;
      tokenizer.feed(bytes);
    }
    tokenizer.finish();
  } catch (const XmlFault& fault) {
    stream.package().fail(fault.kind, stream.name(), tokenizer.line(), fault.what());
  }
}

}  // namespace qto::embedded
