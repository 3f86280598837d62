#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qto::cli {

/// The name that was probably meant (letter case ignored), "" when none is near.
std::string nearest(std::string_view given, const std::vector<std::string>& names);

/// "did you mean X?" and the names where they are few, as the end of a complaint.
std::string suggestion(std::string_view given, const std::vector<std::string>& names,
                       std::string_view what);

}  // namespace qto::cli
