#include "qto/server/wrappers/marshaling.hpp"

#include "qto/com/errors.hpp"

namespace qto::server {
namespace {

void check(const CallParameters& given) {
  const bool complete = (given.values || given.count == 0) && (given.named || !given.named_count);
  if (!complete || given.named_count > given.count)
    throw CallFailure(CallError::bad_parameter_count);
}

}  // namespace

bool is_left_out(const ComVariant& given) noexcept {
  const ComVariant* value = &given;
  if (given.type == (vt_by_ref | vt_variant) && given.pointer)
    value = static_cast<const ComVariant*>(given.pointer);
  return value->type == vt_error &&
         value->i4 == static_cast<std::int32_t>(CallError::parameter_not_found);
}

Variant argument_value(const ComVariant& given, std::uint32_t position) {
  try {
    return from_com(given);
  } catch (const CallFailure&) {
    throw CallFailure(CallError::type_mismatch, position);
  }
}

CallArguments read_arguments(const CallParameters& given) {
  check(given);
  CallArguments arguments;
  for (std::uint32_t i = 0; i < given.count; ++i) {
    const ComVariant& value = given.values[given.count - 1 - i];
    if (is_left_out(value)) {
      arguments.omitted.push_back(i);
      arguments.values.emplace_back();
    } else {
      arguments.values.push_back(argument_value(value, i));
    }
  }
  for (std::uint32_t i = 0; i < given.named_count; ++i)
    if (given.named[i] != id_assigned_value)
      arguments.named.push_back({static_cast<std::uint32_t>(given.named[i]), given.count - 1 - i});
  return arguments;
}

void answer_arguments(CallParameters& given, const CallArguments& arguments) {
  for (const std::uint32_t i : arguments.answered)
    write_back(given.values[given.count - 1 - i], arguments.values[i]);
}

}  // namespace qto::server
