#include "qto/server/calls/dispatch.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"
#include "qto/com/conversion.hpp"
#include "qto/server/module/module.hpp"

namespace qto::server {
namespace {

constexpr std::uint32_t nowhere = static_cast<std::uint32_t>(-1);

bool answers(Kind kind, std::uint16_t flags) {
  switch (kind) {
    case Kind::get:
      return flags & call_get;
    case Kind::put:
      return flags & call_put;
    case Kind::put_ref:
      return flags & call_put_ref;
    case Kind::method:
      return flags & call_method;
    case Kind::enumerator:
      return flags & (call_method | call_get);
  }
  return false;
}

const Member* find_member(const ClassTable& table, std::int32_t id, std::uint16_t flags) {
  for (const Member& member : table.members)
    if (member.id == id && answers(member.kind, flags)) return &member;
  return nullptr;
}

/// Scripts do not tell the two kinds of assignment apart, so one stands in for the other.
const Member* find_member_or_kin(const ClassTable& table, std::int32_t id, std::uint16_t flags) {
  constexpr std::uint16_t assignment = call_put | call_put_ref;
  const Member* found = find_member(table, id, flags);
  if (!found && (flags & assignment)) found = find_member(table, id, assignment);
  return found;
}

bool is_assignment(Kind kind) { return kind == Kind::put || kind == Kind::put_ref; }

bool is_omitted(const CallArguments& arguments, std::uint32_t index) {
  return std::ranges::find(arguments.omitted, index) != arguments.omitted.end();
}

/// For every argument of the member the index of its value; nowhere when none was given.
std::vector<std::uint32_t> assign_places(const Member& member, const CallArguments& arguments) {
  const std::size_t expected = member.types.size();
  if (arguments.values.size() > expected) throw CallFailure(CallError::bad_parameter_count);
  std::vector<std::uint32_t> places(expected, nowhere);
  std::vector<bool> is_named(arguments.values.size(), false);
  for (const NamedArgument& named : arguments.named) {
    if (named.position >= expected || named.index >= is_named.size() ||
        places[named.position] != nowhere)
      throw CallFailure(CallError::parameter_not_found, named.index);
    places[named.position] = named.index;
    is_named[named.index] = true;
  }
  std::uint32_t next = 0;
  const bool assigns = is_assignment(member.kind);
  for (std::uint32_t index = 0; index < is_named.size(); ++index) {
    if (is_named[index]) continue;
    // The value that is assigned comes last, whatever else was left out.
    const bool is_value = assigns && index + 1 == is_named.size();
    const std::uint32_t place = is_value ? static_cast<std::uint32_t>(expected - 1) : next++;
    if (place >= expected || places[place] != nowhere)
      throw CallFailure(CallError::parameter_not_found, index);
    places[place] = index;
  }
  return places;
}

Variant absent_value(const Member& member, std::uint32_t place, bool omitted_openly) {
  if (!argument_at(member.arguments, place).optional)
    throw CallFailure(
        omitted_openly ? CallError::parameter_not_optional : CallError::bad_parameter_count, place);
  return Variant();
}

Variant call_member(const Member& member, Object& object, CallArguments& arguments) {
  const auto places = assign_places(member, arguments);
  std::vector<Variant> values(places.size());
  for (std::uint32_t place = 0; place < places.size(); ++place) {
    const std::uint32_t index = places[place];
    if (index == nowhere || is_omitted(arguments, index)) {
      values[place] = absent_value(member, place, index != nowhere || !arguments.named.empty());
    } else {
      values[place] = arguments.values[index];
      convert_or_throw(values[place], member.types[place], index);
    }
  }
  Variant result;
  try {
    result = member.call(object, values);
  } catch (const CallFailure& failure) {
    // Inside a member's own events other calls fail on their own account.
    if (!failure.argument || *failure.argument >= places.size()) throw;
    throw CallFailure(static_cast<CallError>(failure.number), places[*failure.argument]);
  }
  for (std::uint32_t place = 0; place < places.size(); ++place)
    if (places[place] != nowhere && argument_at(member.arguments, place).by_reference) {
      arguments.values[places[place]] = values[place];
      arguments.answered.push_back(places[place]);
    }
  return result;
}

Ref<Object> call_without_arguments(const Member& member, Object& object) {
  return member.call(object, {}).object();
}

}  // namespace

std::optional<std::int32_t> member_id(const ClassTable& table, std::string_view name) {
  for (const Member& member : table.members)
    if (text::equal_ascii_nocase(member.name, name)) return member.id;
  return std::nullopt;
}

std::string_view member_name(const ClassTable& table, std::int32_t id) {
  for (const Member& member : table.members)
    if (member.id == id) return member.name;
  return "";
}

std::optional<std::uint32_t> argument_position(const ClassTable& table, std::int32_t id,
                                               std::string_view name) {
  for (const Member& member : table.members) {
    if (member.id != id) continue;
    for (std::uint32_t place = 0; place < member.types.size(); ++place)
      if (text::equal_ascii_nocase(argument_at(member.arguments, place).name, name)) return place;
  }
  return std::nullopt;
}

Variant invoke(const ClassTable& table, Object& object, std::int32_t id, std::uint16_t flags,
               CallArguments& arguments) {
  const Member* member = find_member_or_kin(table, id, flags);
  if (!member) throw CallFailure(CallError::member_not_found);
  // Worksheets("Plan") asks the collection that Worksheets answers for its item.
  if (member->kind == Kind::get && member->types.empty() && !arguments.values.empty() &&
      member->result.shape == Shape::object) {
    const Ref<Object> list = call_without_arguments(*member, object);
    const ClassTable* lists = list ? table_of(*list) : nullptr;
    if (lists && find_member(*lists, default_id, call_get))
      return invoke(*lists, *list, default_id, call_get, arguments);
  }
  return call_member(*member, object, arguments);
}

Variant invoke(const ClassTable& table, Object& object, std::string_view name, std::uint16_t flags,
               CallArguments& arguments) {
  const auto id = member_id(table, name);
  if (!id) throw CallFailure(CallError::unknown_name);
  return invoke(table, object, *id, flags, arguments);
}

namespace {

std::string name_at(const char16_t* const* names, std::uint32_t index) {
  return names[index] ? text::from_utf16(names[index]) : std::string();
}

}  // namespace

Result ids_of_names(const ClassTable& table, const char16_t* const* names, std::uint32_t count,
                    std::int32_t* ids) noexcept {
  if (!names || !ids || count == 0) return null_pointer;
  return guarded([&] {
    const auto id = member_id(table, name_at(names, 0));
    bool all = id.has_value();
    ids[0] = id.value_or(id_unknown);
    for (std::uint32_t i = 1; i < count; ++i) {
      const auto position = id ? argument_position(table, *id, name_at(names, i)) : std::nullopt;
      ids[i] = position ? static_cast<std::int32_t>(*position) : id_unknown;
      all = all && position;
    }
    return all ? ok : static_cast<Result>(CallError::unknown_name);
  });
}

}  // namespace qto::server
