#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "qto/com/com.hpp"
#include "qto/com/errors.hpp"
#include "qto/server/tables/table.hpp"

/// Late-bound calls: by name and by identifier.
namespace qto::server {

/// What a call wants to do with a member; a client may allow several at once.
enum CallFlag : std::uint16_t { call_method = 1, call_get = 2, call_put = 4, call_put_ref = 8 };

struct NamedArgument {
  std::uint32_t position;  ///< from 0, as argument_position answers it
  std::uint32_t index;     ///< of its value in `values`
};

/// The arguments of a late-bound call in the order in which they are written; for an assignment the
/// new value is the last one. A value that the client leaves out is listed in `omitted`.
struct CallArguments {
  std::vector<Variant> values;
  std::vector<NamedArgument> named;
  std::vector<std::uint32_t> omitted;
  std::vector<std::uint32_t> answered = {};  ///< after the call: values that the member answered
};

/// The identifier of a member, letter case ignored; nothing when the class has none of that name.
std::optional<std::int32_t> member_id(const ClassTable& table, std::string_view name);
/// The name of the members with an identifier; "" where there are none.
std::string_view member_name(const ClassTable& table, std::int32_t id);
/// The position of a member's argument by name, letter case ignored.
std::optional<std::uint32_t> argument_position(const ClassTable& table, std::int32_t id,
                                               std::string_view name);

/// Calls the member. `flags` are CallFlags. Afterwards `arguments.values` hold what by-reference
/// arguments answered. Throws CallFailure when the call does not fit, its argument index counting
/// in `arguments.values`, and whatever the member itself throws.
Variant invoke(const ClassTable& table, Object& object, std::int32_t id, std::uint16_t flags,
               CallArguments& arguments);
/// The same by name.
Variant invoke(const ClassTable& table, Object& object, std::string_view name, std::uint16_t flags,
               CallArguments& arguments);

/// The identifiers of a member and, after it, of its arguments. What is not known gets id_unknown,
/// and the whole the result "unknown name".
Result ids_of_names(const ClassTable& table, const char16_t* const* names, std::uint32_t count,
                    std::int32_t* ids) noexcept;

}  // namespace qto::server
