#include "qto/automation/keyed_collection.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "qto/automation/folded_key.hpp"
#include "tests/support/failing_memory.hpp"

namespace qto {
namespace {

struct Item : RefCounted {
  explicit Item(std::string text) : name(std::move(text)) {}
  std::string name;
};
using Items = KeyedCollection<Item, FoldedKey>;

bool add(Items& items, const std::string& name) {
  return items.add(FoldedKey(name), make_ref<Item>(name));
}

std::string listed(Items& items) {
  std::string out;
  Items::Pass pass(items);
  while (Item* item = pass.next()) out += item->name + " ";
  return out;
}

TEST(KeyedCollection, KeepsOrderAndOneItemPerKeyWhateverItsCase) {
  Items items;
  EXPECT_TRUE(add(items, "b"));
  EXPECT_TRUE(add(items, "a"));
  EXPECT_FALSE(add(items, "B"));
  EXPECT_TRUE(add(items, "\u00c4rger"));
  EXPECT_FALSE(add(items, "\u00e4RGER"));
  EXPECT_EQ(listed(items), "b a \u00c4rger ");
  EXPECT_EQ(items.count(), 3u);
  EXPECT_EQ(items.find(FoldedKey("A"))->name, "a");
  EXPECT_EQ(items.find(FoldedKey("c")), nullptr);
}

TEST(KeyedCollection, PositionsCountFromOneAndMoveUpAfterARemoval) {
  Items items;
  for (const char* name : {"a", "b", "c"}) add(items, name);
  EXPECT_EQ(items.at(0), nullptr);
  EXPECT_EQ(items.at(4), nullptr);
  EXPECT_TRUE(items.remove_at(1));
  EXPECT_EQ(items.at(1)->name, "b");
  EXPECT_FALSE(items.remove(FoldedKey("a")));
  EXPECT_FALSE(items.remove_at(3));
  EXPECT_EQ(items.count(), 2u);
}

TEST(KeyedCollection, APassReachesWhatIsAppendedAndNotWhatIsRemoved) {
  Items items;
  for (const char* name : {"a", "b", "c", "d"}) add(items, name);
  std::string seen;
  Items::Pass pass(items);
  for (Ref<Item> item = pass.next(); item; item = pass.next()) {
    seen += item->name;
    if (item->name == "a") {
      items.remove(FoldedKey("a"));  // the one being visited
      items.remove(FoldedKey("c"));  // one to come
    }
    if (item->name == "b") {
      add(items, "e");
      add(items, "c");
    }
  }
  EXPECT_EQ(seen, "abdec");
  EXPECT_EQ(listed(items), "b d e c ");
}

TEST(KeyedCollection, PositionsAreRightWhileAPassKeepsHolesOpen) {
  Items items;
  for (const char* name : {"a", "b", "c"}) add(items, name);
  Items::Pass pass(items);
  items.remove(FoldedKey("a"));
  EXPECT_EQ(items.at(1)->name, "b");
  EXPECT_EQ(items.at(2)->name, "c");
  EXPECT_EQ(items.at(3), nullptr);
}

TEST(KeyedCollection, ReplacingEveryItemDuringAPassVisitsEachReplacementOnce) {
  Items items;
  constexpr int count = 5000;
  for (int i = 0; i < count; ++i) add(items, "k" + std::to_string(i));
  int visited = 0;
  Items::Pass pass(items);
  while (Item* item = pass.next()) {
    if (++visited > count) continue;
    const std::string name = item->name;
    items.remove(FoldedKey(name));
    add(items, name);
  }
  EXPECT_EQ(visited, 2 * count);
  EXPECT_EQ(items.count(), static_cast<std::size_t>(count));
}

/// Against a plain vector that is searched from the front.
TEST(KeyedCollection, AgreesWithAPlainListOverRandomEdits) {
  for (unsigned seed = 0; seed < 30; ++seed) {
    std::mt19937 random(seed);
    Items items;
    std::vector<std::string> plain;
    for (int step = 0; step < 600; ++step) {
      const std::string name = "n" + std::to_string(random() % 60);
      const auto known = std::find(plain.begin(), plain.end(), name);
      if (random() % 3) {
        EXPECT_EQ(add(items, name), known == plain.end());
        if (known == plain.end()) plain.push_back(name);
      } else if (random() % 2) {
        EXPECT_EQ(items.remove(FoldedKey(name)), known != plain.end());
        if (known != plain.end()) plain.erase(known);
      } else if (!plain.empty()) {
        const std::size_t position = random() % plain.size();
        ASSERT_EQ(items.at(position + 1)->name, plain[position]);
        EXPECT_TRUE(items.remove_at(position + 1));
        plain.erase(plain.begin() + static_cast<std::ptrdiff_t>(position));
      }
    }
    std::string expected;
    for (const auto& name : plain) expected += name + " ";
    ASSERT_EQ(listed(items), expected) << "seed " << seed;
  }
}

TEST(KeyedCollection, AnItemThatCannotBeIndexedForLackOfMemoryIsNotAdded) {
  for (std::int64_t n = 1; n <= 12; ++n) {
    Items items;
    std::vector<Ref<Item>> made;
    std::vector<FoldedKey> keys;
    for (int i = 0; i < 40; ++i) {
      made.push_back(make_ref<Item>("item " + std::to_string(i)));
      keys.emplace_back(made.back()->name);
    }
    std::size_t added = 0;
    try {
      const test::FailingMemory failing(n);
      for (std::size_t i = 0; i < made.size(); ++i, ++added) items.add(std::move(keys[i]), made[i]);
    } catch (const std::bad_alloc&) {
    }
    EXPECT_EQ(items.count(), added);
    for (std::size_t i = 0; i < made.size(); ++i)
      EXPECT_EQ(items.find(FoldedKey(made[i]->name)) != nullptr, i < added) << n << " " << i;
    for (const auto& item : made) items.add(FoldedKey(item->name), item);
    EXPECT_EQ(items.count(), made.size());
  }
}

TEST(KeyedCollection, ALoopMayRemoveWhatItStandsOn) {
  Items items;
  for (const char* name : {"a", "b", "c"}) add(items, name);
  std::string seen;
  for (PassIterator<Item, Items::Pass> item{Items::Pass(items)}; item != std::default_sentinel;
       ++item) {
    items.remove(FoldedKey(item->name));
    seen += item->name;
  }
  EXPECT_EQ(seen, "abc");
}

}  // namespace
}  // namespace qto
