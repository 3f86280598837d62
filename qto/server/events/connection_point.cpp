#include "qto/server/events/connection_point.hpp"

#include <utility>

#include "qto/com/errors.hpp"
#include "qto/server/events/enumeration.hpp"

namespace qto::server {
namespace {

template <class Interface>
Holder<Interface> counted(Interface& object) {
  object.AddRef();
  return Holder<Interface>(&object);
}

struct CountedPoint {
  static void add(ConnectionPoint* point) { point->AddRef(); }
  static void release(ConnectionPoint* point) { point->Release(); }
};
struct CountedData {
  static void add(const ConnectData& data) { data.sink->AddRef(); }
  static void release(const ConnectData& data) { data.sink->Release(); }
};

/// The sink's event interface, or whatever else takes calls by name.
Holder<Dispatch> events_of(Unknown& sink, const Guid& event_interface) {
  void* found = nullptr;
  for (const Guid& id : {event_interface, iid_dispatch})
    if (sink.QueryInterface(id, &found) == ok && found)
      return Holder<Dispatch>(static_cast<Dispatch*>(found));
  return {};
}

}  // namespace

class EventConnectionPoint final : public Counted<ConnectionPoint> {
 public:
  explicit EventConnectionPoint(EventContainer& container)
      : Counted(iid_connection_point),
        container_(container),
        owner_(counted(container.owner())),
        source_(container.source_),
        connections_(ConnectionList::of(container.table_, *source_)) {}

  Result QTO_CALL GetConnectionInterface(Guid* id) override {
    if (!id) return null_pointer;
    *id = container_.table_.event_interface_id;
    return ok;
  }
  Result QTO_CALL GetConnectionPointContainer(ConnectionPointContainer** out) override {
    if (!out) return null_pointer;
    container_.AddRef();
    *out = &container_;
    return ok;
  }
  Result QTO_CALL Advise(Unknown* sink, std::uint32_t* cookie) override {
    if (!sink || !cookie) return null_pointer;
    *cookie = 0;
    return guarded([&] {
      Holder<Dispatch> events = events_of(*sink, container_.table_.event_interface_id);
      if (!events) return cannot_connect;
      *cookie = connections_->add(
          make_ref<ClientSink>(container_.table_, std::move(events), container_.marshaler_));
      return ok;
    });
  }
  Result QTO_CALL Unadvise(std::uint32_t cookie) override {
    return guarded([&] { return connections_->remove(cookie) ? ok : no_connection; });
  }
  Result QTO_CALL EnumConnections(com::EnumConnections** out) override {
    if (!out) return null_pointer;
    *out = nullptr;
    return guarded([&] {
      std::vector<ConnectData> list;
      for (const auto& [cookie, sink] : connections_->sinks())
        if (auto* client = dynamic_cast<ClientSink*>(sink.get()))
          list.push_back({counted<Unknown>(client->client()).detach(), cookie});
      *out = new Enumeration<ConnectData, CountedData>(iid_enum_connections, std::move(list));
      return ok;
    });
  }

 private:
  ~EventConnectionPoint() override { container_.point_ = nullptr; }

  EventContainer& container_;
  Holder<Unknown> owner_;
  Ref<Object> source_;
  Ref<ConnectionList> connections_;
};

Holder<ConnectionPoint> EventContainer::point() {
  if (point_) return counted(*point_);
  if (!source_) throw AutomationError(disconnected);
  Holder<ConnectionPoint> made(new EventConnectionPoint(*this));
  point_ = made.get();
  return made;
}

Result QTO_CALL EventContainer::EnumConnectionPoints(com::EnumConnectionPoints** out) {
  if (!out) return null_pointer;
  *out = nullptr;
  return guarded([&] {
    *out = new Enumeration<ConnectionPoint*, CountedPoint>(iid_enum_connection_points,
                                                           {point().detach()});
    return ok;
  });
}

Result QTO_CALL EventContainer::FindConnectionPoint(const Guid& id, ConnectionPoint** out) {
  if (!out) return null_pointer;
  *out = nullptr;
  if (id != table_.event_interface_id) return no_connection;
  return guarded([&] {
    *out = point().detach();
    return ok;
  });
}

}  // namespace qto::server
