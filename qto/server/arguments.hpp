#pragma once

#include "qto/com/com.hpp"
#include "qto/server/dispatch.hpp"

namespace qto::server::com {

/// Whether a client marks an argument as one that it does not give.
bool is_left_out(const ComVariant& given) noexcept;
/// The value of the argument at a position; throws CallFailure naming it when it cannot cross.
Variant argument_value(const ComVariant& given, std::uint32_t position);

/// The arguments of a late-bound call, in the order in which they are written. Throws CallFailure.
CallArguments read_arguments(const CallParameters& given);
/// Answers those that were given by reference.
void answer_arguments(CallParameters& given, const CallArguments& arguments);

}  // namespace qto::server::com
