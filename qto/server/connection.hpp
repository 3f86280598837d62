#pragma once

#include <cstdint>
#include <vector>

#include "qto/server/table.hpp"

namespace qto::server {

/// The connection of one sink to all events of one object. It ends with disconnect() or with the
/// connection itself; the object is held meanwhile.
class Connection {
 public:
  /// Throws std::invalid_argument for a class without events.
  Connection(const ClassTable& table, Ref<Object> source, const Ref<EventSink>& sink);
  Connection(Connection&&) noexcept = default;
  Connection& operator=(Connection&&) = delete;
  ~Connection() { disconnect(); }
  void disconnect();

 private:
  const ClassTable* table_;
  Ref<Object> source_;
  std::vector<int> tokens_;
};

/// A sink that checks what the sink behind it answers: a by-reference answer of a wrong type leaves
/// the preset value.
Ref<EventSink> checked_sink(const ClassTable& table, Ref<EventSink> sink);

}  // namespace qto::server
