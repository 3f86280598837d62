#pragma once

#include "qto/automation/object.hpp"
#include "qto/com/values.hpp"
#include "qto/server/calls/dispatch.hpp"

namespace qto::server {

/// What a client holds of an object: IDispatch over its table, connection points for its events, or
/// an enumerator. An object has one wrapper at a time; one that stands for another
/// server's object is shown as that. The reference is the caller's.
Unknown* wrapper_of(const Ref<Object>& object);

/// The object behind a client's reference: this system's own, or what the module puts in the place
/// of another server's. Throws CallFailure with type_mismatch where it puts nothing.
Ref<Object> object_behind(Unknown& unknown);

/// The marshaler of a server: objects appear as wrappers.
ObjectMarshaler& object_marshaler();
/// As a client gets it: enumerators are no dispatch interfaces.
ComVariant to_com(const Variant& value);
inline Variant from_com(const ComVariant& variant) { return from_com(variant, object_marshaler()); }
inline void write_back(ComVariant& target, const Variant& value) {
  write_back(target, value, object_marshaler());
}

/// Whether a client marks an argument as one that it does not give.
bool is_left_out(const ComVariant& given) noexcept;
/// The value of the argument at a position; throws CallFailure naming it when it cannot cross.
Variant argument_value(const ComVariant& given, std::uint32_t position);

/// The arguments of a late-bound call, in the order in which they are written. Throws CallFailure.
CallArguments read_arguments(const CallParameters& given);
/// Answers those that the member takes by reference and the client gave so.
void answer_arguments(CallParameters& given, const CallArguments& arguments);

}  // namespace qto::server
