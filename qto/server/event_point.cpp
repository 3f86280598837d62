#include "qto/server/event_point.hpp"

#include <utility>

#include "qto/com/errors.hpp"
#include "qto/server/com_sink.hpp"
#include "qto/server/enumeration.hpp"
#include "qto/server/face_class.hpp"

namespace qto::server::com {
namespace {

struct CountedPoint {
  static void add(ConnectionPoint* point) { point->AddRef(); }
  static void release(ConnectionPoint* point) { point->Release(); }
};
struct CountedData {
  static void add(const ConnectData& data) { data.sink->AddRef(); }
  static void release(const ConnectData& data) { data.sink->Release(); }
};

/// The sink's event interface, or whatever else takes calls by name.
Dispatch* events_of(Unknown& sink, const Guid& event_interface) {
  void* found = nullptr;
  for (const Guid& id : {event_interface, iid_dispatch})
    if (sink.QueryInterface(id, &found) == ok && found) return static_cast<Dispatch*>(found);
  return nullptr;
}

}  // namespace

Result QTO_CALL EventPoint::QueryInterface(const Guid& id, void** out) {
  if (!out) return null_pointer;
  if (id != iid_connection_point) return owner().QueryInterface(id, out);
  *out = static_cast<ConnectionPoint*>(this);
  AddRef();
  return ok;
}

Result QTO_CALL EventPoint::GetConnectionInterface(Guid* id) {
  if (!id) return null_pointer;
  *id = table_.event_interface_id;
  return ok;
}

Result QTO_CALL EventPoint::GetConnectionPointContainer(ConnectionPointContainer** out) {
  return owner().QueryInterface(iid_connection_point_container, reinterpret_cast<void**>(out));
}

Result QTO_CALL EventPoint::Advise(Unknown* sink, std::uint32_t* cookie) {
  if (!sink || !cookie) return null_pointer;
  *cookie = 0;
  return guarded([&] {
    const Ref<Object> source = face_.object();
    if (!source) return disconnected;
    Dispatch* events = events_of(*sink, table_.event_interface_id);
    if (!events) return cannot_connect;
    Holder<Unknown> held(events);
    events->AddRef();  // for sink_of
    Connected made{std::move(held), Connection(table_, source, sink_of(table_, events))};
    connections_.emplace(++last_cookie_, std::move(made));
    *cookie = last_cookie_;
    return ok;
  });
}

Result QTO_CALL EventPoint::Unadvise(std::uint32_t cookie) {
  const auto found = connections_.find(cookie);
  if (found == connections_.end()) return no_connection;
  // Letting go of the sink may come back here.
  const auto ended = connections_.extract(found);
  return ok;
}

Result QTO_CALL EventPoint::EnumConnections(com::EnumConnections** out) {
  if (!out) return null_pointer;
  *out = nullptr;
  return guarded([&] {
    std::vector<ConnectData> list;
    list.reserve(connections_.size());
    for (const auto& [cookie, connected] : connections_) {
      connected.sink.get()->AddRef();
      list.push_back({connected.sink.get(), cookie});
    }
    *out = new Enumeration<ConnectData, CountedData>(iid_enum_connections, std::move(list));
    return ok;
  });
}

Result QTO_CALL EventPoint::Container::EnumConnectionPoints(com::EnumConnectionPoints** out) {
  if (!out) return null_pointer;
  *out = nullptr;
  return guarded([&] {
    point_.AddRef();
    *out = new Enumeration<ConnectionPoint*, CountedPoint>(iid_enum_connection_points, {&point_});
    return ok;
  });
}

Result QTO_CALL EventPoint::Container::FindConnectionPoint(const Guid& id, ConnectionPoint** out) {
  if (!out) return null_pointer;
  *out = nullptr;
  if (id != point_.table_.event_interface_id) return no_connection;
  *out = &point_;
  point_.AddRef();
  return ok;
}

}  // namespace qto::server::com
