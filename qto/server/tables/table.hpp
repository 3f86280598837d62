#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

#include "qto/automation/object.hpp"
#include "qto/automation/variant.hpp"
#include "qto/com/conversion.hpp"
#include "qto/com/guid.hpp"

/// The automation surface as data: what every member of every class is called, takes and answers.
/// The tables are written once (…_table.cpp); calls, events, the type library and the documentation
/// all read them.
namespace qto::server {

using namespace com;  // the surface is written in the terms of the component object model

enum class Kind : std::uint8_t { get, put, put_ref, method, enumerator };

/// One entry of an interface, a place in its function table. `arguments` holds the names in order,
/// ", " between them; "&" before one says by reference, "?" after one that it may be left out.
struct Member {
  Kind kind;
  std::int32_t id;
  std::string_view name;
  std::string_view arguments;
  Type result;
  std::span<const Type> types;  ///< of the arguments
  /// Calls the C++ member. Arguments have their final types, and answers are written back.
  Variant (*call)(Object&, std::span<Variant>);
  const void* (*function)();  ///< the function at this place of the interface's table
};

/// Receives the events of one object.
class EventSink : public RefCounted {
 public:
  /// Values of by-reference arguments are read back afterwards.
  virtual void raise(std::int32_t id, std::span<Variant> arguments) = 0;
};

/// One event of an event interface; its identifier is its position from 1.
struct EventMember {
  std::string_view name;
  std::string_view arguments;
  std::span<const Type> types;
  int (*add)(Object&, std::int32_t id, const Ref<EventSink>&);
  void (*remove)(Object&, int token);
};

struct ClassTable {
  std::string_view name;
  std::string_view role;
  Guid class_id, interface_id, event_interface_id;
  std::span<const Member> members;
  std::span<const EventMember> events;
  Ref<Object> (*create)();       ///< null: clients cannot make one
  bool (*holds)(const Object&);  ///< whether an object is of the type that the members take
};

struct EnumerationItem {
  std::string_view name;
  std::int32_t value;
};

struct EnumerationTable {
  std::string_view name;
  std::string_view role;
  Guid id;
  std::span<const EnumerationItem> items;
};

/// A type library: classes and enumerations under one name.
struct LibraryTable {
  std::string_view name;
  std::string_view description;
  Guid id;
  std::span<const ClassTable* const> classes;
  std::span<const EnumerationTable* const> enumerations;
};

/// One argument of a member or event, as the table writes it.
struct Argument {
  std::string_view name;
  bool by_reference = false;
  bool optional = false;
};

/// How many arguments a list of names holds.
constexpr std::size_t count_arguments(std::string_view names) {
  std::size_t count = names.empty() ? 0 : 1;
  for (const char c : names) count += c == ',';
  return count;
}

/// The argument at a position from 0, which must be in the list.
constexpr Argument argument_at(std::string_view names, std::size_t position) {
  for (; position > 0; --position) names.remove_prefix(names.find(',') + 2);
  names = names.substr(0, names.find(','));
  Argument argument{names};
  argument.by_reference = names.starts_with('&');
  argument.optional = names.ends_with('?');
  argument.name.remove_prefix(argument.by_reference);
  argument.name.remove_suffix(argument.optional);
  return argument;
}

/// The standard identifier of a collection's enumerator.
inline constexpr std::int32_t enumerator_id = -4;
/// The identifier of a member that a bare call of its object reaches.
inline constexpr std::int32_t default_id = 0;

}  // namespace qto::server
