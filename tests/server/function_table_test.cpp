/// Early-bound calls: by place in the function tables of the default interfaces.
#include <gtest/gtest.h>

#include "qto/engine/drill_down.hpp"
#include "qto/server/engine_tables/library.hpp"
#include "tests/server/shown.hpp"
#include "tests/support/text_book.hpp"

namespace qto::server {

/// How a compiler sees the interface in the type library. (Not in the nameless
/// namespace, where it would hold that nobody implements it.)
struct ModelPartsInterface : Dispatch {
  virtual Result QTO_CALL AddExisting(Unknown** part) = 0;
  virtual Result QTO_CALL get_Count(std::int32_t* out) = 0;
  virtual Result QTO_CALL get_Item(ComVariant item, Unknown** out) = 0;
  virtual Result QTO_CALL Remove(ComVariant item) = 0;
  virtual Result QTO_CALL NewEnum(Unknown** out) = 0;
};

namespace {

using namespace engine_tables;
using test::Books;

/// The place of a member in its interface, behind the seven functions of Dispatch.
std::size_t place_of(const ClassTable& table, std::string_view name, Kind kind) {
  std::size_t place = 0;
  while (table.members[place].name != name || table.members[place].kind != kind) ++place;
  return place;
}

ComVariant number(std::int32_t value) {
  ComVariant out;
  out.type = vt_i4;
  out.i4 = value;
  return out;
}

TEST(FunctionTable, HasAFunctionForEveryMember) {
  for (const ClassTable* table : engine_library().classes)
    for (const Member& member : table->members)
      EXPECT_NE(member.function(), nullptr) << table->name << "." << member.name;
}

TEST(FunctionTable, CollectionsAreDrivenByPlace) {
  const auto wrapper = shown("ModelParts"), part = shown("ModelPart");
  auto* parts = static_cast<ModelPartsInterface*>(wrapper.get());
  std::int32_t count = -1;
  EXPECT_EQ(parts->get_Count(&count), ok);
  EXPECT_EQ(count, 0);
  Unknown* given = part.get();
  EXPECT_EQ(parts->AddExisting(&given), ok);
  EXPECT_EQ(given, part.get());
  EXPECT_EQ(parts->get_Count(&count), ok);
  EXPECT_EQ(count, 1);
  Holder<Unknown> item, walk;
  EXPECT_EQ(parts->get_Item(number(1), item.put()), ok);
  EXPECT_EQ(item.get(), part.get());
  ASSERT_EQ(parts->NewEnum(walk.put()), ok);
  const auto items = query<EnumVariant>(walk.get(), iid_enum_variant);
  ComVariant first;
  ASSERT_EQ(items->Next(1, &first, nullptr), ok);
  EXPECT_EQ(first.unknown, part.get());
  clear(first);
  EXPECT_EQ(parts->Remove(number(1)), ok);
  EXPECT_EQ(parts->get_Count(&count), ok);
  EXPECT_EQ(count, 0);
}

TEST(FunctionTable, DrillsByPlaceAlone) {
  Books books("A1=2; B1=3; C1==A1*B1");
  const auto drill = shown("DrillDown"), start = shown(books.range("C1"));
  // The places of the interface: see the order of the table.
  enum { input_cells = 0, get_start = 3, put_start = 4, get_depth = 6, put_depth = 7, find = 10 };
  ASSERT_EQ(call_at(drill.get(), put_start, start.get()), ok);
  Holder<Dispatch> back;
  ASSERT_EQ(call_at(drill.get(), get_start, back.put()), ok);
  EXPECT_EQ(back.get(), start.get());
  EXPECT_EQ(call_at(drill.get(), find), ok);
  Holder<ModelPartsInterface> inputs;
  ASSERT_EQ(call_at(drill.get(), input_cells, inputs.put()), ok);
  std::int32_t count = 0;
  EXPECT_EQ(inputs->get_Count(&count), ok);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(hex(call_at(drill.get(), put_depth, std::int32_t{-1})), "80040004");
  EXPECT_EQ(call_at(drill.get(), put_depth, std::int32_t{3}), ok);
  EXPECT_EQ(call_at(drill.get(), get_depth, &count), ok);
  EXPECT_EQ(count, 3);
}

TEST(FunctionTable, ValuesKeepTheirTypes) {
  const auto options = shown("DrillOptions"), part = shown("ModelPart");
  enum { get_blanks = 0, put_blanks = 1 };
  std::int16_t shows = 7;
  EXPECT_EQ(call_at(options.get(), put_blanks, std::int16_t{1}), ok);
  EXPECT_EQ(call_at(options.get(), get_blanks, &shows), ok);
  EXPECT_EQ(shows, -1);

  // A text that is null reads as an empty one, and a result is the client's to free.
  const std::size_t create = place_of(model_part_table, "Create", Kind::method);
  const std::size_t title = place_of(model_part_table, "Title", Kind::get);
  const Text kind = make_text("Name"), name = make_text("Größe"), shown_as = make_text("ä😀");
  Unknown* nothing = nullptr;
  EXPECT_EQ(call_at(part.get(), create, &nothing, kind, name), ok);
  EXPECT_EQ(call_at(part.get(), title + 1, shown_as), ok);
  Text answer = nullptr;
  EXPECT_EQ(call_at(part.get(), title, &answer), ok);
  EXPECT_EQ(taken(answer), "ä😀");
  EXPECT_EQ(call_at(part.get(), place_of(model_part_table, "AddressShort", Kind::get), &answer),
            ok);
  EXPECT_EQ(taken(answer), "Größe");
  EXPECT_EQ(call_at(part.get(), title + 1, Text{}), ok);
  for (const Text text : {kind, name, shown_as}) free_text(text);
}

TEST(FunctionTable, WhatDoesNotFitIsRefused) {
  const auto drill = shown("DrillDown"), parts = shown("ModelParts");
  const std::size_t put_start = 4, put_options = 16, get_count = 1, get_item = 2, add = 0;
  EXPECT_EQ(hex(call_at(drill.get(), put_start, static_cast<Unknown*>(nullptr))), "80040001");
  Unknown* wrong = parts.get();
  EXPECT_EQ(hex(call_at(drill.get(), put_options, &wrong)), "80020005");
  EXPECT_EQ(call_at(drill.get(), put_options, static_cast<Unknown**>(nullptr)), null_pointer);
  EXPECT_EQ(call_at(parts.get(), get_count, static_cast<std::int32_t*>(nullptr)), null_pointer);
  EXPECT_EQ(call_at(parts.get(), add, static_cast<Unknown**>(nullptr)), null_pointer);
  Holder<Unknown> item;
  ComVariant odd;
  odd.type = 36;  // a record
  EXPECT_EQ(hex(call_at(parts.get(), get_item, odd, item.put())), "80020005");
  EXPECT_FALSE(item);
}

TEST(FunctionTable, ByReferenceArgumentsAreAnswered) {
  const Ref<Object> list = find_class(engine_library(), "ModelParts")->create();
  const auto parts = shown(list), given = shown("ModelPart");
  const auto own = make_ref<ModelPart>();
  const auto events = ref_cast<ModelParts>(list);
  const int token = events->BeforeItemAdded.add([&](Ref<ModelPart>& item) { item = own; });
  Unknown* part = given.get();
  part->AddRef();  // the variable's own
  EXPECT_EQ(call_at(parts.get(), 0, &part), ok);
  const Holder<Unknown> answered(part), expected(wrapper_of(own));
  EXPECT_EQ(answered.get(), expected.get());
  events->BeforeItemAdded.remove(token);
}

}  // namespace
}  // namespace qto::server
