#include <io.h>
#include <windows.h>

#include <charconv>
#include <system_error>
#include <utility>

#include "qto/automation/wide_text_windows.hpp"
#include "qto/diagnostics/stream_channel.hpp"

namespace qto::diagnostics {
namespace {

std::string last_failure() {
  return std::system_category().message(static_cast<int>(GetLastError()));
}

class HandleChannel : public StreamChannel {
 public:
  HandleChannel(std::string target, HANDLE handle, bool owned)
      : target_(std::move(target)), handle_(handle), owned_(owned) {}
  HandleChannel(const HandleChannel&) = delete;
  HandleChannel& operator=(const HandleChannel&) = delete;
  ~HandleChannel() override {
    if (owned_) CloseHandle(handle_);
  }

  void write(std::string_view text) override {
    while (!text.empty()) {
      DWORD written = 0;
      if (!WriteFile(handle_, text.data(), static_cast<DWORD>(text.size()), &written, nullptr))
        fail_viewer(target_, last_failure());
      text.remove_prefix(written);
    }
  }

 private:
  const std::string target_;
  const HANDLE handle_;
  const bool owned_;
};

/// Asked about a descriptor that is not open, the C run-time would end the process.
void ignore_parameter(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {}

HANDLE handle_in(const std::string& target) {
  const std::string_view digits = std::string_view(target).substr(3);
  int number = -1;
  const auto end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end || number < 0)
    fail_viewer(target, "no open file descriptor");
  const auto before = _set_invalid_parameter_handler(ignore_parameter);
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(number));
  _set_invalid_parameter_handler(before);
  if (handle == INVALID_HANDLE_VALUE) fail_viewer(target, "no open file descriptor");
  return handle;
}

HANDLE connected(const std::string& target) {
  // Anything else would be a file, which is not to be written over.
  constexpr std::string_view pipes = "\\\\.\\pipe\\";
  if (!text::equal_ascii_nocase(std::string_view(target).substr(0, pipes.size()), pipes))
    fail_viewer(target, "no name of a pipe; it begins with " + std::string(pipes));
  const HANDLE handle = CreateFileW(text::to_wide(target).c_str(), GENERIC_WRITE, 0, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
  if (handle == INVALID_HANDLE_VALUE)
    fail_viewer(target, last_failure() + "; is the viewer running?");
  return handle;
}

}  // namespace

std::unique_ptr<StreamChannel> StreamChannel::open(const std::string& target) {
  const bool given = target.starts_with("fd:");
  const HANDLE handle = given ? handle_in(target) : connected(target);
  return std::make_unique<HandleChannel>(target, handle, !given);
}

}  // namespace qto::diagnostics
