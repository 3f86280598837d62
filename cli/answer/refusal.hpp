#pragma once

#include <cstdint>
#include <string>

#include "qto/automation/object.hpp"
#include "qto/host/workbook.hpp"

namespace qto::cli {

/// "80040003"
std::string error_number_text(std::int32_t number);

/// What the engine refused, before the sentence of the error, which says what can be done. `item`
/// is how the user wrote the start, `start` what it denotes.
std::string refusal_text(std::int32_t number, const Ref<host::Workbook>& book,
                         const std::string& item, const Ref<Object>& start);

}  // namespace qto::cli
