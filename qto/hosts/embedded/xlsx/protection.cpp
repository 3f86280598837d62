#include "qto/hosts/embedded/xlsx/protection.hpp"

#include <algorithm>

namespace qto::embedded {

void read_password(const Attributes& attributes, const PasswordAttributes& names,
                   SheetProtection& into) {
  into.algorithm = attributes.text(names.algorithm);
  into.hash = attributes.text(into.algorithm.empty() ? names.legacy_hash : names.hash);
  into.salt = attributes.text(names.salt);
  into.spins = static_cast<std::uint32_t>(
      std::clamp<std::int64_t>(attributes.whole_or(names.spins, 0), 0, 10'000'000));
}

}  // namespace qto::embedded
