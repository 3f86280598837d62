#include "qto/diagnostics/stream_viewer.hpp"

#include <charconv>
#include <string_view>

#include "qto/automation/error.hpp"

#ifndef _WIN32
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#endif

namespace qto::diagnostics {
namespace {

/// "Device unavailable", as the automation run time numbers it.
constexpr std::int32_t device_unavailable = 68;

[[noreturn]] void fail(const std::string& target, const std::string& why) {
  throw NumberedFailure(device_unavailable, "the trace viewer " + target + ": " + why);
}

}  // namespace

#ifdef _WIN32

std::shared_ptr<TraceViewer> open_stream_viewer(const std::string& target) {
  fail(target, "streams to a viewer are not available on this system");
}

#else

namespace {

/// Keeps a write into a pipe that nobody reads from ending the process.
class WithoutPipeSignal {
 public:
  WithoutPipeSignal() {
    sigemptyset(&pipe_);
    sigaddset(&pipe_, SIGPIPE);
    sigset_t waiting;
    sigpending(&waiting);
    waited_before_ = sigismember(&waiting, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
  }
  WithoutPipeSignal(const WithoutPipeSignal&) = delete;
  WithoutPipeSignal& operator=(const WithoutPipeSignal&) = delete;
  ~WithoutPipeSignal() {
    const timespec at_once{0, 0};
    if (!waited_before_)
      while (sigtimedwait(&pipe_, nullptr, &at_once) == -1 && errno == EINTR) {
      }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  sigset_t pipe_, before_;
  bool waited_before_;
};

class StreamViewer : public TraceViewer {
 public:
  StreamViewer(std::string target, int descriptor, bool owned)
      : target_(std::move(target)), descriptor_(descriptor), owned_(owned) {}
  StreamViewer(const StreamViewer&) = delete;
  StreamViewer& operator=(const StreamViewer&) = delete;
  ~StreamViewer() override {
    if (owned_) close(descriptor_);
  }

  void send(std::string_view line, TraceMarker marker) override {
    message_.assign(1, marker == TraceMarker::entering ? '1' : '2').append(" ");
    message_.append(line).append("\n");
    const WithoutPipeSignal quiet;
    for (std::string_view rest = message_; !rest.empty();) {
      const ssize_t written = write(descriptor_, rest.data(), rest.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) fail(target_, std::strerror(errno));
      rest.remove_prefix(static_cast<std::size_t>(written));
    }
  }

 private:
  const std::string target_;
  const int descriptor_;
  const bool owned_;
  std::string message_;
};

int descriptor_in(const std::string& target) {
  const std::string_view digits = std::string_view(target).substr(3);
  int number = -1;
  const auto end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, number);
  struct stat status;
  if (read.ec != std::errc() || read.ptr != end || number < 0 || fstat(number, &status) != 0)
    fail(target, "no open file descriptor");
  return number;
}

int connected(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path) fail(path, "no path of a socket");
  path.copy(address.sun_path, path.size());
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) fail(path, std::strerror(errno));
  if (connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0)
    return descriptor;
  const std::string why = std::strerror(errno);
  close(descriptor);
  fail(path, why + "; is the viewer running?");
}

}  // namespace

std::shared_ptr<TraceViewer> open_stream_viewer(const std::string& target) {
  const bool given = target.starts_with("fd:");
  const int descriptor = given ? descriptor_in(target) : connected(target);
  return std::make_shared<StreamViewer>(target, descriptor, !given);
}

#endif

}  // namespace qto::diagnostics
