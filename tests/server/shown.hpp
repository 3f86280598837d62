#pragma once

#include <cstdio>
#include <string>

#include "qto/com/holder.hpp"
#include "qto/com/values.hpp"
#include "qto/server/engine_tables/library.hpp"
#include "qto/server/wrappers/marshaling.hpp"

/// What a client holds, for tests within one program.
namespace qto::server {

/// A new object of the engine as a client gets it.
inline Holder<Dispatch> shown(const Ref<Object>& object) {
  return Holder<Dispatch>(static_cast<Dispatch*>(wrapper_of(object)));
}
inline Holder<Dispatch> shown(const char* class_name) {
  return shown(find_class(engine_library(), class_name)->create());
}

template <class Interface>
Holder<Interface> query(Unknown* object, const Guid& id) {
  Holder<Interface> out;
  object->QueryInterface(id, out.template put<void>());
  return out;
}

inline std::string hex(Result number) {
  char text[9];
  std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(number));
  return text;
}

/// A text that the receiver of a call gave away.
inline std::string taken(Text text) {
  const std::string out = read_text(text);
  free_text(text);
  return out;
}

/// Calls the function at a place behind the seven of Dispatch, as a client does that was built
/// against the type library.
template <class... Arguments>
Result call_at(Dispatch* object, std::size_t place, Arguments... arguments) {
  using Function = Result(QTO_CALL*)(Dispatch*, Arguments...);
  void** const table = *reinterpret_cast<void***>(object);
  return reinterpret_cast<Function>(table[7 + place])(object, arguments...);
}

}  // namespace qto::server
