#include "qto/server/calls/dispatch.hpp"

#include <gtest/gtest.h>

#include "qto/engine/drill_down.hpp"
#include "qto/server/tables/enumerator.hpp"
#include "tests/server/late_bound.hpp"
#include "tests/support/text_book.hpp"

namespace qto::server {
namespace {

using test::Books;

TEST(LateBound, DrillsByNameAlone) {
  Books books("A1=2; B1=3; C1==A1*B1");
  LateBound drill("DrillDown");
  drill.put("startunderlyingobject", Variant(books.range("C1")));
  drill.run("FindInputs");
  const LateBound inputs = drill.object_of("InputCells");
  ASSERT_EQ(inputs.get("Count"), Variant(2));
  const LateBound first(inputs.get("Item", {Variant(1)}).object());
  EXPECT_EQ(first.get("AddressShort"), Variant("A1"));
  EXPECT_EQ(first.get("value"), Variant(2.0));
  EXPECT_EQ(first.get("IsConstant"), Variant(true));
  EXPECT_EQ(first.get("AddressLong", {Variant(1)}).text(), "'Sheet1'!A1");
  EXPECT_EQ(inputs.get("Item", {first.get("UniqueKey")}).object(), first.object);
}

TEST(LateBound, EnumeratesUnderTheStandardIdentifier) {
  Books books("A1=2; B1=3; C1==A1*B1");
  LateBound drill("DrillDown");
  drill.put("StartUnderlyingObject", Variant(books.range("C1")));
  drill.run("FindInputs");
  const LateBound inputs = drill.object_of("InputCells");
  CallArguments none;
  const auto walk = ref_cast<Enumerator>(
      invoke(*inputs.table, *inputs.object, enumerator_id, call_method | call_get, none).object());
  ASSERT_TRUE(walk);
  Variant item;
  ASSERT_TRUE(walk->next(item));
  const auto second = walk->clone();
  std::string found;
  while (second->next(item)) found += LateBound(item.object()).get("AddressShort").text() + " ";
  walk->reset();
  while (walk->next(item)) found += LateBound(item.object()).get("AddressShort").text() + " ";
  EXPECT_EQ(found, "B1 A1 B1 ");
}

TEST(LateBound, MisuseGetsTheStandardErrors) {
  Books books("A1=2; B1==A1");
  const LateBound drill("DrillDown"), part("ModelPart"), options("DrillOptions"), list("LinkList"),
      linked("LinkedBooks");
  const Variant cell(books.range("B1"));
  EXPECT_EQ(error_of([&] { drill.get("NoSuchMember"); }), "80020006");
  EXPECT_EQ(error_of([&] { drill.put("InputCells", cell); }), "80020003");
  EXPECT_EQ(error_of([&] { drill.run("MaxItems"); }), "80020003");
  EXPECT_EQ(error_of([&] { part.get("ParentRange"); }), "80020003");
  EXPECT_EQ(error_of([&] { drill.put("MaxItems", Variant("many")); }), "80020005/0");
  EXPECT_EQ(error_of([&] { drill.put("MaxItems", Variant(3e9)); }), "8002000A/0");
  EXPECT_EQ(error_of([&] { drill.put("MaxItems", Variant(ErrorValue::na)); }), "80020005/0");
  EXPECT_EQ(error_of([&] { drill.put("DrillOptions", cell); }), "80020005/0");
  EXPECT_EQ(error_of([&] { drill.put("StartUnderlyingObject", Variant("A1")); }), "80020005/0");
  EXPECT_EQ(error_of([&] { drill.run("FindInputs", {Variant(1)}); }), "8002000E");
  EXPECT_EQ(error_of([&] { part.run("Create", {cell}); }), "8002000E/1");
  EXPECT_EQ(error_of([&] { part.run("Create", {cell, Variant("Range"), cell}); }), "80020005/2");
  EXPECT_EQ(error_of([&] { part.get("AddressLong"); }), "8002000E/0");
  // What the members themselves raise.
  EXPECT_EQ(error_of([&] { part.get("AddressLong", {Variant(0)}); }), "80040004");
  EXPECT_EQ(error_of([&] { drill.put("MaxItems", Variant(-1)); }), "80040004");
  EXPECT_EQ(error_of([&] { drill.put("StartUnderlyingObject", Variant()); }), "80040001");
  EXPECT_EQ(error_of([&] { drill.put("StartUnderlyingObject", Variant(books.range("A1"))); }),
            "80040002");
  EXPECT_EQ(error_of([&] { options.put("ParseMatch", Variant(1)); }), "80040004");
  EXPECT_EQ(error_of([&] { linked.get("Item", {Variant("none")}); }), "800A0009");
}

TEST(LateBound, ValuesAreConvertedAsAutomationDoes) {
  const LateBound drill("DrillDown"), options("DrillOptions"), part("ModelPart");
  const std::pair<Variant, std::int32_t> numbers[] = {
      {Variant("12"), 12}, {Variant(2.5), 2}, {Variant(3.5), 4}, {Variant(), 0}};
  for (const auto& [given, stored] : numbers) {
    drill.put("MaxItems", given);
    EXPECT_EQ(drill.get("MaxItems"), Variant(stored));
  }
  const std::pair<Variant, bool> flags[] = {{Variant(1), true},      {Variant(0), false},
                                            {Variant("true"), true}, {Variant("False"), false},
                                            {Variant("0"), false},   {Variant(-0.5), true},
                                            {Variant(Null()), false}};
  for (const auto& [given, stored] : flags) {
    if (given.is_null()) {
      EXPECT_EQ(error_of([&] { options.put("ShowZeros", given); }), "80020005/0");
      continue;
    }
    options.put("ShowZeros", given);
    EXPECT_EQ(options.get("ShowZeros"), Variant(stored));
  }
  part.put("Title", Variant(2.5));
  EXPECT_EQ(part.get("Title"), Variant("2.5"));
}

TEST(LateBound, ArgumentsMayBeNamedAndLeftOut) {
  Books books("A1=2; B1==A1");
  const LateBound part("ModelPart");
  const std::int32_t id = *member_id(*part.table, "create");
  EXPECT_EQ(argument_position(*part.table, id, "unknownname"), 2u);
  EXPECT_FALSE(argument_position(*part.table, id, "Colour"));

  CallArguments given{{Variant("Range"), Variant(Ref<Object>())}, {{1, 0}, {0, 1}}, {}};
  invoke(*part.table, *part.object, id, call_method, given);
  EXPECT_EQ(part.get("IsUnknown"), Variant(true));
  EXPECT_EQ(part.get("AddressShort"), Variant(""));

  CallArguments mixed{{Variant("Z9"), Variant(), Variant("Name")}, {{2, 0}}, {}};
  invoke(*part.table, *part.object, id, call_method, mixed);
  EXPECT_EQ(part.get("AddressShort"), Variant("Z9"));

  CallArguments twice{{Variant("Name"), Variant()}, {{0, 0}}, {}};
  EXPECT_EQ(error_of([&] { invoke(*part.table, *part.object, id, call_method, twice); }),
            "80020004/1");
  CallArguments omitted{{Variant(), Variant()}, {}, {1}};
  EXPECT_EQ(error_of([&] { invoke(*part.table, *part.object, id, call_method, omitted); }),
            "8002000F/1");
  CallArguments beyond{{Variant("Name")}, {{7, 0}}, {}};
  EXPECT_EQ(error_of([&] { invoke(*part.table, *part.object, id, call_method, beyond); }),
            "80020004/0");
}

TEST(LateBound, ByReferenceArgumentsAreAnswered) {
  const LateBound list("ModelParts"), part("ModelPart");
  const auto parts = ref_cast<ModelParts>(list.object);
  const auto own = make_ref<ModelPart>();
  const int token = parts->BeforeItemAdded.add([&](Ref<ModelPart>& item) { item = own; });
  CallArguments given{{Variant(part.object)}, {}, {}};
  invoke(*list.table, *list.object, "AddExisting", call_method, given);
  EXPECT_EQ(given.values[0].object(), own);
  parts->BeforeItemAdded.remove(token);
}

}  // namespace
}  // namespace qto::server
