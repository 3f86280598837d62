#include "qto/hosts/embedded/book/text_pool.hpp"

#include <gtest/gtest.h>

#include <string>

namespace qto::embedded {
namespace {

TEST(TextPool, EveryTextIsKeptOnceAndInPlace) {
  TextPool pool;
  std::vector<std::string_view> first;
  const auto text = [](int n) {
    return std::string(static_cast<std::size_t>(n) % 300, 'x') + std::to_string(n);
  };
  for (int n = 0; n < 3000; ++n) first.push_back(pool.view(pool.intern(text(n))));
  // The pool has grown over and over meanwhile.
  for (int n = 0; n < 3000; ++n) {
    const std::string_view again = pool.view(pool.intern(text(n)));
    EXPECT_EQ(again, text(n));
    EXPECT_EQ(again.data(), first[static_cast<std::size_t>(n)].data());
  }
  EXPECT_EQ(pool.size(), 3001u);  // the empty text is always there
}

TEST(TextPool, TextsMayBeEmptyHoldNullsAndBeLargerThanAChunk) {
  TextPool pool;
  EXPECT_EQ(pool.intern(""), 0u);
  const std::string nulls("a\0b", 3);
  const std::string large(200'000, 'y');
  const TextId a = pool.intern(nulls);
  const TextId b = pool.intern(large);
  EXPECT_NE(pool.intern("a"), a);
  EXPECT_EQ(pool.view(a), nulls);
  EXPECT_EQ(pool.view(b), large);
}

}  // namespace
}  // namespace qto::embedded
