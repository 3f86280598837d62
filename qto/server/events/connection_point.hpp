#pragma once

#include "qto/com/com.hpp"
#include "qto/server/events/connection.hpp"

namespace qto::server {

/// A further interface of an object whose counting and identity are its owner's.
template <class Interface>
class Delegating : public Interface {
 public:
  explicit Delegating(Unknown& owner) : owner_(owner) {}
  Delegating(const Delegating&) = delete;
  Delegating& operator=(const Delegating&) = delete;
  Result QTO_CALL QueryInterface(const Guid& id, void** out) override {
    return owner_.QueryInterface(id, out);
  }
  std::uint32_t QTO_CALL AddRef() final { return owner_.AddRef(); }
  std::uint32_t QTO_CALL Release() final { return owner_.Release(); }

 protected:
  ~Delegating() = default;
  Unknown& owner() const noexcept { return owner_; }

 private:
  Unknown& owner_;
};

class EventConnectionPoint;

/// What an object with events shows of its one connection point. The point is an object of its own,
/// as its clients and marshalers expect, and keeps the owner alive.
class EventContainer final : public Delegating<ConnectionPointContainer> {
 public:
  EventContainer(Unknown& owner, const Ref<Object>& source, const ClassTable& table,
                 ObjectMarshaler& marshaler)
      : Delegating(owner), source_(source), table_(table), marshaler_(marshaler) {}
  Result QTO_CALL EnumConnectionPoints(com::EnumConnectionPoints** out) override;
  Result QTO_CALL FindConnectionPoint(const Guid& id, ConnectionPoint** out) override;

 private:
  friend class EventConnectionPoint;
  /// The point, made when nobody holds it; with a reference for the caller.
  Holder<ConnectionPoint> point();

  const Ref<Object>& source_;  // the owner's
  const ClassTable& table_;
  ObjectMarshaler& marshaler_;
  ConnectionPoint* point_ = nullptr;
};

}  // namespace qto::server
