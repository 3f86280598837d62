#pragma once

#include "qto/com/com.hpp"
#include "qto/server/table.hpp"

namespace qto::server::com {

/// The identifiers of a member and, after it, of its arguments. What is not known gets id_unknown,
/// and the whole the result "unknown name".
Result ids_of_names(const ClassTable& table, const char16_t* const* names, std::uint32_t count,
                    std::int32_t* ids) noexcept;

}  // namespace qto::server::com
