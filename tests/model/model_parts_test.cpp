#include "qto/model/model_parts.hpp"

#include <gtest/gtest.h>

#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

/// An unknown part is enough: it has an address and a key.
Ref<ModelPart> named(std::string_view address) {
  auto part = make_ref<ModelPart>();
  part->Create(nullptr, "Range", address);
  return part;
}

void add(ModelParts& parts, Ref<ModelPart> part) { parts.AddExisting(part); }

TEST(ModelParts, HoldOnePartPerKey) {
  const auto parts = make_ref<ModelParts>();
  const auto first = named("A1");
  add(*parts, first);
  add(*parts, first);
  add(*parts, named("A1"));
  add(*parts, named("a1"));
  add(*parts, named("B1"));
  EXPECT_EQ(listed(parts), "?A1 ?B1");
  EXPECT_EQ(parts->Item(first->UniqueKey()), first);
  EXPECT_EQ(parts->Item("'\\[]'!b1"), nullptr);  // unknown parts begin as no local file
  EXPECT_EQ(parts->Item("'/[]'!b1"), parts->Item(2));
}

TEST(ModelParts, AnswerNothingForWhatTheyDoNotHold) {
  const auto parts = make_ref<ModelParts>();
  add(*parts, named("A1"));
  for (const Variant& missing : {Variant(0), Variant(2), Variant(-1), Variant(1e300), Variant("x"),
                                 Variant(), Variant(Null{})})
    EXPECT_EQ(parts->Item(missing), nullptr);
  const Reports reports;
  parts->Remove(2);
  EXPECT_EQ(reports.text(), " !9");
  EXPECT_EQ(parts->Count(), 1);
}

TEST(ModelParts, MoveUpAfterARemoval) {
  const auto parts = make_ref<ModelParts>();
  for (const char* address : {"A1", "B1", "C1"}) add(*parts, named(address));
  parts->Remove(1);
  EXPECT_EQ(parts->Item(1)->AddressShort(), "B1");
  parts->Remove(parts->Item(2)->UniqueKey());
  EXPECT_EQ(listed(parts), "?B1");
}

TEST(ModelParts, AHandlerMaySubstituteAPartOrTakeItAway) {
  const auto parts = make_ref<ModelParts>();
  const auto mine = named("Z9");
  const int token = parts->BeforeItemAdded.add([&](Ref<ModelPart>& part) { part = mine; });
  auto part = named("A1");
  parts->AddExisting(part);
  EXPECT_EQ(part, mine);
  EXPECT_EQ(parts->Item(mine->UniqueKey()), mine);
  parts->BeforeItemAdded.remove(token);
  parts->BeforeItemAdded.add([](Ref<ModelPart>& item) { item = nullptr; });
  part = named("B1");
  parts->AddExisting(part);
  EXPECT_EQ(listed(parts), "?Z9");
}

TEST(ModelParts, APassHoldsItsList) {
  auto parts = make_ref<ModelParts>();
  for (const char* address : {"A1", "B1"}) add(*parts, named(address));
  ModelParts::Pass pass(parts);
  parts = nullptr;
  EXPECT_EQ(pass.next()->AddressShort(), "A1");
  EXPECT_EQ(pass.next()->AddressShort(), "B1");
  EXPECT_EQ(pass.next(), nullptr);
}

TEST(ModelParts, APartTakenOutOfALargeRangeMayComeBack) {
  Books books("B1==SUM(A1:A5000); A1=1; A2=2");
  const auto drill = drill_from(books, "B1");
  drill->DrillHere();
  const auto list = drill->StartModelPart()->DirectPrecedents();
  ASSERT_EQ(list->Count(), 5000);
  auto second = list->Item(2);
  list->Remove(2);
  EXPECT_EQ(list->Count(), 4999);
  EXPECT_EQ(list->Item(second->UniqueKey()), nullptr);
  list->AddExisting(second);
  list->AddExisting(second);
  EXPECT_EQ(list->Count(), 5000);
  EXPECT_EQ(list->Item(second->UniqueKey()), second);
  EXPECT_EQ(list->Item(5000), second);
}

TEST(ModelParts, ARangeLoopPassesOverAll) {
  const auto parts = make_ref<ModelParts>();
  for (const char* address : {"A1", "B1", "C1"}) add(*parts, named(address));
  std::string seen;
  for (ModelPart& part : *parts) {
    parts->Remove(part.UniqueKey());
    seen += part.AddressShort() + " ";
  }
  EXPECT_EQ(seen, "A1 B1 C1 ");
}

}  // namespace
}  // namespace qto::test
