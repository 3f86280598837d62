#pragma once

#include <map>

#include "qto/com/connections.hpp"
#include "qto/com/holder.hpp"
#include "qto/server/connection.hpp"
#include "qto/server/table.hpp"

namespace qto::server::com {

/// A further interface of an object whose counting and identity are its owner's.
template <class Interface>
class Attached : public Interface {
 public:
  explicit Attached(Unknown& owner) : owner_(owner) {}
  Attached(const Attached&) = delete;
  Attached& operator=(const Attached&) = delete;
  Result QTO_CALL QueryInterface(const Guid& id, void** out) override {
    return owner_.QueryInterface(id, out);
  }
  std::uint32_t QTO_CALL AddRef() final { return owner_.AddRef(); }
  std::uint32_t QTO_CALL Release() final { return owner_.Release(); }

 protected:
  ~Attached() = default;
  Unknown& owner() const noexcept { return owner_; }

 private:
  Unknown& owner_;
};

class Face;

/// The one connection point of a class with events.
class EventPoint final : public Attached<ConnectionPoint> {
 public:
  EventPoint(const Face& face, Unknown& owner, const ClassTable& table)
      : Attached(owner), face_(face), table_(table), container_(owner, *this) {}

  Result QTO_CALL QueryInterface(const Guid& id, void** out) override;
  Result QTO_CALL GetConnectionInterface(Guid* id) override;
  Result QTO_CALL GetConnectionPointContainer(ConnectionPointContainer** out) override;
  Result QTO_CALL Advise(Unknown* sink, std::uint32_t* cookie) override;
  Result QTO_CALL Unadvise(std::uint32_t cookie) override;
  Result QTO_CALL EnumConnections(com::EnumConnections** out) override;

  /// The owner's list of connection points.
  ConnectionPointContainer& container() noexcept { return container_; }
  /// Ends all connections.
  void disconnect() noexcept { connections_.clear(); }

 private:
  class Container final : public Attached<ConnectionPointContainer> {
   public:
    Container(Unknown& owner, EventPoint& point) : Attached(owner), point_(point) {}
    Result QTO_CALL EnumConnectionPoints(com::EnumConnectionPoints** out) override;
    Result QTO_CALL FindConnectionPoint(const Guid& id, ConnectionPoint** out) override;

   private:
    EventPoint& point_;
  };
  struct Connected {
    Holder<Unknown> sink;
    Connection connection;
  };

  const Face& face_;
  const ClassTable& table_;
  Container container_;
  std::map<std::uint32_t, Connected> connections_;
  std::uint32_t last_cookie_ = 0;
};

}  // namespace qto::server::com
