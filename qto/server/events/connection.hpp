#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "qto/com/holder.hpp"
#include "qto/com/values.hpp"
#include "qto/server/tables/table.hpp"

namespace qto::server {

/// The sinks that are connected to the events of one object. They stay connected as long as the
/// object lives, whether or not a client holds it meanwhile, and do not keep it alive.
class ConnectionList final : public RefCounted {
 public:
  /// The list of an object; an empty one when nothing is connected. Throws std::invalid_argument
  /// for a class without events.
  static Ref<ConnectionList> of(const ClassTable& table, Object& source);
  ~ConnectionList() override;

  /// Connects a sink to all events and answers the number of the connection. Answers of a sink that
  /// do not convert to the types of the event leave the presets.
  std::uint32_t add(Ref<EventSink> sink);
  /// Ends a connection: its sink is let go, and not called again even by an event that is being
  /// raised. False when there is none of that number.
  bool remove(std::uint32_t cookie);
  /// The sinks with the numbers of their connections.
  std::vector<std::pair<std::uint32_t, Ref<EventSink>>> sinks() const;

 private:
  class Link;
  template <class T, class... Arguments>
  friend Ref<T> qto::make_ref(Arguments&&... arguments);
  ConnectionList(const ClassTable& table, Object& source) : table_(table), source_(source) {}

  const ClassTable& table_;
  Object& source_;
  std::map<std::uint32_t, Link*> links_;  // held by the handlers at the object's events
  std::uint32_t last_cookie_ = 0;
};

/// A client's sink. One that fails leaves the presets; one that answers `operation_aborted` ends
/// the operation that raised the event with that number.
class ClientSink final : public EventSink {
 public:
  ClientSink(const ClassTable& table, Holder<Dispatch> client, ObjectMarshaler& marshaler)
      : table_(table), client_(std::move(client)), marshaler_(marshaler) {}
  void raise(std::int32_t id, std::span<Variant> arguments) override;
  Dispatch& client() const noexcept { return *client_.get(); }

 private:
  const ClassTable& table_;
  Holder<Dispatch> client_;
  ObjectMarshaler& marshaler_;
};

}  // namespace qto::server
