#pragma once

#include <optional>
#include <string_view>

#include "qto/hosts/embedded/encryption/bytes.hpp"

namespace qto::embedded {

/// The bytes that a base64 text stands for; nothing when it is none or has more than 4,096 letters.
std::optional<Bytes> from_base64(std::string_view text);

}  // namespace qto::embedded
