#include "qto/server/names.hpp"

#include "qto/automation/text.hpp"
#include "qto/com/errors.hpp"
#include "qto/server/dispatch.hpp"

namespace qto::server::com {
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

}  // namespace qto::server::com
