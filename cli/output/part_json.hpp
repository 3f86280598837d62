#pragma once

#include <string_view>

#include "cli/output/json_writer.hpp"
#include "qto/automation/variant.hpp"
#include "qto/model/model_part.hpp"

namespace qto::cli {

/// A part as an object with its public members under their names.
void write_part(JsonWriter& json, ModelPart& part);
void write_value(JsonWriter& json, const Variant& value);

}  // namespace qto::cli
