#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "qto/automation/object.hpp"
#include "qto/com/com.hpp"
#include "qto/com/holder.hpp"

/// An application of another server, played by our own: its wrappers stand behind server that hide
/// that they are ours.
namespace qto::test {

/// All server of one application. Calls are counted and fail where they are told to.
class PlayedServer {
 public:
  PlayedServer() = default;
  PlayedServer(const PlayedServer&) = delete;
  PlayedServer& operator=(const PlayedServer&) = delete;
  ~PlayedServer();

  /// What another server's client would hold of the object.
  com::Holder<com::Unknown> stub_of(const Ref<Object>& object);
  com::Holder<com::Unknown> stub_of(com::Holder<com::Dispatch> object) {
    return com::Holder<com::Unknown>(wrap(std::move(object)));
  }
  bool covers(const com::Unknown* passed) const {
    for (const auto& entry : live_)
      if (static_cast<const com::Unknown*>(unknown_of(entry.second)) == passed) return true;
    return false;
  }
  /// From now on the n-th call fails, and with `always` all after it; 0: none.
  void fail_at(std::int64_t n, bool always = false, com::Result result = com::failure(0x800A03EC)) {
    calls = 0;
    failing_ = n;
    always_ = always;
    result_ = result;
  }
  /// PlayedServer that somebody holds.
  std::size_t held() const { return live_.size(); }

  std::int64_t calls = 0;
  /// Members that the application does not have.
  std::set<std::u16string> hidden;

 private:
  class Stub;
  com::Dispatch* wrap(com::Holder<com::Dispatch> inner);
  static com::Unknown* unknown_of(Stub* stub);
  com::Unknown* inner_of(com::Unknown* passed) const;
  bool fails() {
    ++calls;
    return failing_ != 0 && (calls == failing_ || (always_ && calls > failing_));
  }

  std::map<com::Unknown*, Stub*> live_;  // by the identity of what they cover
  std::int64_t failing_ = 0;
  bool always_ = false;
  com::Result result_ = com::ok;
};

}  // namespace qto::test
