#include "qto/diagnostics/stream_viewer.hpp"

#include <string_view>
#include <utility>

#include "qto/automation/error.hpp"
#include "qto/diagnostics/stream_channel.hpp"

namespace qto::diagnostics {
namespace {

class StreamViewer : public TraceViewer {
 public:
  explicit StreamViewer(std::unique_ptr<StreamChannel> channel) : channel_(std::move(channel)) {}

  void send(std::string_view line, TraceMarker marker) override {
    message_.assign(1, marker == TraceMarker::entering ? '1' : '2').append(" ");
    message_.append(line).append("\n");
    channel_->write(message_);
  }

 private:
  std::unique_ptr<StreamChannel> channel_;
  std::string message_;
};

}  // namespace

void fail_viewer(const std::string& target, const std::string& why) {
  // "Device unavailable", as the automation run time numbers it.
  constexpr std::int32_t device_unavailable = 68;
  throw NumberedFailure(device_unavailable, "the trace viewer " + target + ": " + why);
}

std::shared_ptr<TraceViewer> open_stream_viewer(const std::string& target) {
  return std::make_shared<StreamViewer>(StreamChannel::open(target));
}

}  // namespace qto::diagnostics
