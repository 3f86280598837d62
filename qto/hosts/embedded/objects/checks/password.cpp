#include "qto/hosts/embedded/objects/checks/password.hpp"

#include <charconv>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/encryption/bytes.hpp"
#include "qto/hosts/embedded/encryption/digest.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"

namespace qto::embedded {
namespace {

/// A file may ask for any number of rounds; applications write 100,000.
constexpr std::uint32_t most_spins = 10'000'000;

/// ECMA-376 Part 1, 18.3.1.85: the salt and the password, then the hash and the number of the
/// round, again and again.
bool digest_matches(const SheetProtection& protection, std::string_view password) {
  const auto digest = Digest::find(protection.algorithm);
  const auto expected = from_base64(protection.hash);
  const auto salt = from_base64(protection.salt);
  if (!digest || !expected || !salt || protection.spins > most_spins) return false;
  return equal_hashes(
      digest->of_password(*salt, password, protection.spins, Digest::RoundNumber::after_hash),
      *expected);
}

std::uint16_t rotate_left_15(std::uint16_t value) {
  return static_cast<std::uint16_t>((value >> 14 & 1) | (value << 1 & 0x7FFF));
}

}  // namespace

std::uint16_t legacy_password_hash(std::string_view password) {
  const std::u16string characters = text::to_utf16(password);
  if (characters.empty()) return 0;
  std::uint16_t hash = 0;
  for (auto c = characters.rbegin(); c != characters.rend(); ++c)
    hash = rotate_left_15(static_cast<std::uint16_t>(hash ^ (*c & 0xFF)));
  return static_cast<std::uint16_t>(hash ^ characters.size() ^ 0xCE4B);
}

bool password_matches(const SheetProtection& protection, std::string_view password) {
  if (protection.hash.empty()) return true;
  if (!protection.algorithm.empty()) return digest_matches(protection, password);
  unsigned stored = 0;
  const char* end = protection.hash.data() + protection.hash.size();
  const auto [stop, error] = std::from_chars(protection.hash.data(), end, stored, 16);
  return error == std::errc{} && stop == end && stored == legacy_password_hash(password);
}

void unprotect(SheetProtection& protection, const std::string& of, std::string_view password) {
  if (!protection.enabled) return;
  if (!password_matches(protection, password)) fail("The password is not that of " + of);
  protection = {};
}

}  // namespace qto::embedded
