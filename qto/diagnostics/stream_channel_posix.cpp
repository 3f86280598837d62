#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <ctime>
#include <utility>

#include "qto/diagnostics/stream_channel.hpp"

namespace qto::diagnostics {
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

class DescriptorChannel : public StreamChannel {
 public:
  DescriptorChannel(std::string target, int descriptor, bool owned)
      : target_(std::move(target)), descriptor_(descriptor), owned_(owned) {}
  DescriptorChannel(const DescriptorChannel&) = delete;
  DescriptorChannel& operator=(const DescriptorChannel&) = delete;
  ~DescriptorChannel() override {
    if (owned_) close(descriptor_);
  }

  void write(std::string_view text) override {
    const WithoutPipeSignal quiet;
    while (!text.empty()) {
      const ssize_t written = ::write(descriptor_, text.data(), text.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) fail_viewer(target_, std::strerror(errno));
      text.remove_prefix(static_cast<std::size_t>(written));
    }
  }

 private:
  const std::string target_;
  const int descriptor_;
  const bool owned_;
};

int descriptor_in(const std::string& target) {
  const std::string_view digits = std::string_view(target).substr(3);
  int number = -1;
  const auto end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, number);
  struct stat status;
  if (read.ec != std::errc() || read.ptr != end || number < 0 || fstat(number, &status) != 0)
    fail_viewer(target, "no open file descriptor");
  return number;
}

int connected(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path)
    fail_viewer(path, "no path of a socket");
  path.copy(address.sun_path, path.size());
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) fail_viewer(path, std::strerror(errno));
  if (connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0)
    return descriptor;
  const std::string why = std::strerror(errno);
  close(descriptor);
  fail_viewer(path, why + "; is the viewer running?");
}

}  // namespace

std::unique_ptr<StreamChannel> StreamChannel::open(const std::string& target) {
  const bool given = target.starts_with("fd:");
  const int descriptor = given ? descriptor_in(target) : connected(target);
  return std::make_unique<DescriptorChannel>(target, descriptor, !given);
}

}  // namespace qto::diagnostics
