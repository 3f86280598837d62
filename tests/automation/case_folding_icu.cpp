#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include "qto/automation/case_folding.hpp"

namespace qto::text {
namespace {

/// Characters that a newer Unicode brings may fold there and not yet here.
bool is_known(char32_t c) {
  UVersionInfo since;
  u_charAge(static_cast<UChar32>(c), since);
  return since[0] <= 15;
}

TEST(FoldCase, IsThatOfUnicodeForEveryCharacter) {
  for (char32_t c = 0; c <= 0x10FFFF; ++c)
    if (is_known(c)) {
      ASSERT_EQ(fold_case(c), static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), 0)))
          << std::hex << static_cast<std::uint32_t>(c);
    }
}

}  // namespace
}  // namespace qto::text
