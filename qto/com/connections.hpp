#pragma once

#include "qto/com/com.hpp"

/// How clients connect to the events of an object.
namespace qto::server::com {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
/// One connection of a connection point, as its enumerator gives it; the sink is counted.
struct ConnectData {
  Unknown* sink;
  std::uint32_t cookie;
};
using EnumConnections = EnumerationOf<ConnectData>;
struct ConnectionPointContainer;
struct ConnectionPoint : Unknown {
  virtual Result QTO_CALL GetConnectionInterface(Guid* id) = 0;
  virtual Result QTO_CALL GetConnectionPointContainer(ConnectionPointContainer** out) = 0;
  virtual Result QTO_CALL Advise(Unknown* sink, std::uint32_t* cookie) = 0;
  virtual Result QTO_CALL Unadvise(std::uint32_t cookie) = 0;
  virtual Result QTO_CALL EnumConnections(com::EnumConnections** out) = 0;
};
using EnumConnectionPoints = EnumerationOf<ConnectionPoint*>;
struct ConnectionPointContainer : Unknown {
  virtual Result QTO_CALL EnumConnectionPoints(com::EnumConnectionPoints** out) = 0;
  virtual Result QTO_CALL FindConnectionPoint(const Guid& id, ConnectionPoint** out) = 0;
};
#pragma GCC diagnostic pop

}  // namespace qto::server::com
