#pragma once

#include <initializer_list>
#include <string>

#include "qto/server/calls/dispatch.hpp"
#include "qto/server/engine_tables/library.hpp"
#include "qto/server/module/module.hpp"

namespace qto::server {

/// An object driven by names, as a script does it.
struct LateBound {
  explicit LateBound(Ref<Object> held)
      : object(std::move(held)), table(object ? table_of(*object) : nullptr) {}
  explicit LateBound(const char* class_name)
      : LateBound(find_class(engine_library(), class_name)->create()) {}

  Variant get(const char* name, std::initializer_list<Variant> values = {}) const {
    return call(name, call_get, values);
  }
  Variant run(const char* name, std::initializer_list<Variant> values = {}) const {
    return call(name, call_method, values);
  }
  void put(const char* name, const Variant& value) const { call(name, call_put, {value}); }
  LateBound object_of(const char* name) const { return LateBound(get(name).object()); }
  Variant call(const char* name, std::uint16_t flags, std::initializer_list<Variant> values) const {
    CallArguments arguments{values, {}, {}};
    return invoke(*table, *object, name, flags, arguments);
  }

  Ref<Object> object;
  const ClassTable* table;
};

/// The error number of what the statement throws, in hexadecimal, with "/" and the index of the
/// argument where one is named; "none" when it throws nothing.
template <class Statement>
std::string error_of(Statement&& run) {
  char text[32];
  try {
    run();
    return "none";
  } catch (const CallFailure& failure) {
    std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(failure.number));
    return failure.argument ? text + ("/" + std::to_string(*failure.argument)) : text;
  } catch (...) {
    std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(current_error_number()));
    return text;
  }
}

}  // namespace qto::server
