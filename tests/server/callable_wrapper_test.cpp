/// What a client can ask of any object, and what happens when it asks wrongly.
#include <gtest/gtest.h>

#include <vector>

#include "qto/com/com.hpp"
#include "qto/com/type_info.hpp"
#include "qto/server/calls/dispatch.hpp"
#include "qto/server/engine_tables/library.hpp"
#include "qto/server/host_tables/library.hpp"
#include "tests/server/module_client.hpp"
#include "tests/server/shown.hpp"
#include "tests/support/text_book.hpp"

namespace qto::server {
namespace {

using namespace engine_tables;

using test::Books;

/// A client's sink that counts what it receives.
struct CountingSink final : Dispatch {
  Result QTO_CALL QueryInterface(const Guid& id, void** out) override {
    *out = id == iid_unknown || id == iid_dispatch ? this : nullptr;
    if (!*out) return no_interface;
    AddRef();
    return ok;
  }
  std::uint32_t QTO_CALL AddRef() override { return ++references; }
  std::uint32_t QTO_CALL Release() override { return --references; }
  Result QTO_CALL GetTypeInfoCount(std::uint32_t*) override { return not_implemented; }
  Result QTO_CALL GetTypeInfo(std::uint32_t, std::uint32_t, TypeInfo**) override {
    return not_implemented;
  }
  Result QTO_CALL GetIDsOfNames(const Guid&, const char16_t* const*, std::uint32_t, std::uint32_t,
                                std::int32_t*) override {
    return not_implemented;
  }
  Result QTO_CALL Invoke(std::int32_t, const Guid&, std::uint32_t, std::uint16_t, CallParameters*,
                         ComVariant*, ExceptionInfo*, std::uint32_t*) override {
    ++calls;
    return ok;
  }
  std::uint32_t references = 0;
  int calls = 0;
};

TEST(CallableWrapper, HasOneIdentityBehindAllItsInterfaces) {
  const auto drill = shown("DrillDown");
  for (const Guid& id : {iid_dispatch, drill_down_table.interface_id, iid_provide_class_info,
                         iid_provide_class_info_2, iid_connection_point_container}) {
    const auto other = query<Unknown>(drill.get(), id);
    ASSERT_TRUE(other) << guid_text(id);
    EXPECT_EQ(query<Unknown>(other.get(), iid_unknown).get(), drill.get()) << guid_text(id);
  }
  EXPECT_FALSE(query<Unknown>(drill.get(), model_part_table.interface_id));
  EXPECT_EQ(drill->QueryInterface(iid_unknown, nullptr), null_pointer);
  EXPECT_FALSE(query<Unknown>(shown("LinkList").get(), iid_connection_point_container));
}

TEST(CallableWrapper, TellsItsClass) {
  Books books("A1=2");
  const std::pair<Holder<Dispatch>, const char*> cases[] = {{shown("ModelPart"), "ModelPart"},
                                                            {shown(books.range("A1")), "Range"}};
  for (const auto& [wrapper, name] : cases) {
    std::uint32_t count = 0;
    EXPECT_EQ(wrapper->GetTypeInfoCount(&count), ok);
    EXPECT_EQ(count, 1u);
    Holder<TypeInfo> type, whole;
    ASSERT_EQ(wrapper->GetTypeInfo(0, 0x409, type.put()), ok);
    EXPECT_EQ(wrapper->GetTypeInfo(1, 0x409, whole.put()), bad_index);
    Text text = nullptr;
    EXPECT_EQ(type->GetDocumentation(id_of_type, &text, nullptr, nullptr, nullptr), ok);
    EXPECT_EQ(taken(text), std::string("_") + name);
    const auto provider = query<ProvideClassInfo2>(wrapper.get(), iid_provide_class_info_2);
    ASSERT_EQ(provider->GetClassInfo(whole.put()), ok);
    EXPECT_EQ(whole->GetDocumentation(id_of_type, &text, nullptr, nullptr, nullptr), ok);
    EXPECT_EQ(taken(text), name);
  }
}

TEST(CallableWrapper, DescribesItsMembers) {
  const auto part = shown("ModelPart");
  Holder<TypeInfo> type;
  ASSERT_EQ(part->GetTypeInfo(0, 0x409, type.put()), ok);
  TypeAttributes* attributes = nullptr;
  ASSERT_EQ(type->GetTypeAttr(&attributes), ok);
  EXPECT_EQ(attributes->id, model_part_table.interface_id);
  EXPECT_EQ(attributes->functions, model_part_table.members.size());
  type->ReleaseTypeAttr(attributes);
  Text names[4] = {};
  std::uint32_t count = 0;
  ASSERT_EQ(type->GetNames(8, names, 3, &count), ok);
  ASSERT_EQ(count, 3u);
  EXPECT_EQ(taken(names[0]), "Create");
  EXPECT_EQ(taken(names[1]), "Obj");
  EXPECT_EQ(taken(names[2]), "LikelyType");
  EXPECT_EQ(hex(type->GetNames(4711, names, 3, &count)), "8002802B");
  Guid events;
  const auto provider = query<ProvideClassInfo2>(part.get(), iid_provide_class_info_2);
  EXPECT_EQ(provider->GetGUID(default_event_interface, &events), ok);
  EXPECT_EQ(events, model_part_table.event_interface_id);
  EXPECT_EQ(provider->GetGUID(7, &events), invalid_argument);
}

TEST(CallableWrapper, ConnectionsAreEnumerated) {
  const auto part = shown("ModelPart");
  const auto container =
      query<ConnectionPointContainer>(part.get(), iid_connection_point_container);
  Holder<EnumConnectionPoints> points;
  ASSERT_EQ(container->EnumConnectionPoints(points.put()), ok);
  Holder<ConnectionPoint> point, none;
  std::uint32_t fetched = 9;
  ASSERT_EQ(points->Next(1, point.put(), &fetched), ok);
  EXPECT_EQ(fetched, 1u);
  EXPECT_EQ(points->Next(1, none.put(), &fetched), no_more);
  EXPECT_EQ(fetched, 0u);
  EXPECT_EQ(points->Reset(), ok);
  EXPECT_EQ(points->Skip(1), ok);
  EXPECT_EQ(points->Skip(1), no_more);
  Guid id;
  EXPECT_EQ(point->GetConnectionInterface(&id), ok);
  EXPECT_EQ(id, model_part_table.event_interface_id);
  EXPECT_EQ(container->FindConnectionPoint(drill_down_table.event_interface_id, none.put()),
            no_connection);

  CountingSink sinks[2];
  std::uint32_t cookies[2] = {};
  for (int i = 0; i < 2; ++i) ASSERT_EQ(point->Advise(&sinks[i], &cookies[i]), ok);
  Holder<EnumConnections> connections, copy;
  ASSERT_EQ(point->EnumConnections(connections.put()), ok);
  ConnectData data[3];
  ASSERT_EQ(connections->Next(1, data, nullptr), ok);
  ASSERT_EQ(connections->Clone(copy.put()), ok);
  EXPECT_EQ(copy->Next(2, data + 1, &fetched), no_more);
  EXPECT_EQ(fetched, 1u);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(data[i].sink, &sinks[i]);
    EXPECT_EQ(data[i].cookie, cookies[i]);
    data[i].sink->Release();
  }
  connections = {};
  copy = {};
  EXPECT_EQ(point->Unadvise(cookies[0]), ok);
  EXPECT_EQ(sinks[0].references, 0u);
  EXPECT_EQ(point->Unadvise(cookies[0]), no_connection);
  const Text title = make_text("new");
  EXPECT_EQ(call(part.get(), u"Title", call_put, {[&] {
                   ComVariant value;
                   value.type = vt_text;
                   value.text = title;
                   return value;
                 }()}),
            0);
  free_text(title);
  EXPECT_EQ(sinks[0].calls, 0);
  EXPECT_EQ(sinks[1].references, 1u);
  EXPECT_EQ(point->Unadvise(cookies[1]), ok);
  EXPECT_EQ(sinks[1].references, 0u);
}

TEST(CallableWrapper, AnythingElseCannotConnect) {
  struct Deaf final : Unknown {
    Result QTO_CALL QueryInterface(const Guid&, void** out) override {
      *out = nullptr;
      return no_interface;
    }
    std::uint32_t QTO_CALL AddRef() override { return 1; }
    std::uint32_t QTO_CALL Release() override { return 1; }
  } deaf;
  const auto part = shown("ModelPart");
  const auto container =
      query<ConnectionPointContainer>(part.get(), iid_connection_point_container);
  Holder<ConnectionPoint> point;
  ASSERT_EQ(container->FindConnectionPoint(model_part_table.event_interface_id, point.put()), ok);
  std::uint32_t cookie = 7;
  EXPECT_EQ(point->Advise(&deaf, &cookie), cannot_connect);
  EXPECT_EQ(point->Advise(nullptr, &cookie), null_pointer);
  EXPECT_EQ(point->Unadvise(99), no_connection);
}

TEST(CallableWrapper, FailuresOfMembersComeWithTheirText) {
  const auto drill = shown("DrillDown");
  ComVariant value = of(-1);
  CallParameters parameters{&value, &id_assigned_value, 1, 1};
  const std::int32_t max_items = 12;
  ExceptionInfo told{};
  EXPECT_EQ(drill->Invoke(max_items, Guid(), 0x409, call_put, &parameters, nullptr, &told, nullptr),
            see_exception);
  EXPECT_EQ(hex(told.number), "80040004");
  EXPECT_EQ(taken(told.source), "QTOEngine");
  EXPECT_NE(taken(told.description).find("out of range"), std::string::npos);
  // A client that does not ask gets the number itself.
  EXPECT_EQ(hex(drill->Invoke(max_items, Guid(), 0x409, call_put, &parameters, nullptr, nullptr,
                              nullptr)),
            "80040004");
  const auto books = shown("LinkedBooks");
  value = of(5);
  parameters = {&value, nullptr, 1, 0};
  EXPECT_EQ(books->Invoke(3, Guid(), 0x409, call_get, &parameters, nullptr, &told, nullptr),
            see_exception);
  EXPECT_EQ(hex(told.number), "800A0009");
  EXPECT_FALSE(taken(told.source).empty());
  EXPECT_FALSE(taken(told.description).empty());
}

TEST(CallableWrapper, WildCallsAreRefused) {
  const auto drill = shown("DrillDown");
  const auto invoke = [&](std::int32_t id, std::uint16_t flags, CallParameters parameters) {
    return hex(drill->Invoke(id, Guid(), 0x409, flags, &parameters, nullptr, nullptr, nullptr));
  };
  std::vector<ComVariant> values(40, of(1));
  const std::int32_t wild[] = {-2147483647, 2147483647, -1, 0};
  for (const std::int32_t id : {0, -1, 4711, -2147483647, 2147483647})
    EXPECT_EQ(invoke(id, 0xFFFF, {}), "80020003") << id;
  EXPECT_EQ(invoke(8, 0, {}), "80020003");
  EXPECT_EQ(invoke(12, call_put, {nullptr, nullptr, 1, 0}), "8002000E");
  EXPECT_EQ(invoke(12, call_put, {values.data(), nullptr, 1, 1}), "8002000E");
  EXPECT_EQ(invoke(12, call_put, {values.data(), wild, 1, 4}), "8002000E");
  EXPECT_EQ(invoke(12, call_put, {values.data(), wild, 4, 4}), "8002000E");
  EXPECT_EQ(invoke(12, call_put, {values.data(), wild, 1, 1}), "80020004");
  EXPECT_EQ(invoke(8, call_method, {values.data(), nullptr, 40, 0}), "8002000E");
  ComVariant circle;
  circle.type = vt_by_ref | vt_variant;
  circle.pointer = &circle;
  EXPECT_EQ(invoke(12, call_put, {&circle, &id_assigned_value, 1, 1}), "80020005");
  for (const int type :
       {36, 72, vt_array | vt_i4, vt_by_ref | vt_array | vt_variant, 0x8003, vt_by_ref | 36}) {
    ComVariant odd;
    odd.type = static_cast<std::uint16_t>(type);
    odd.pointer = &circle;
    EXPECT_EQ(invoke(12, call_put, {&odd, &id_assigned_value, 1, 1}), "80020005") << type;
  }
  std::int32_t id = 0;
  const char16_t* names[] = {u"Create", nullptr, u"LikelyType"};
  std::int32_t ids[3] = {};
  EXPECT_EQ(hex(shown("ModelPart")->GetIDsOfNames(Guid(), names, 3, 0x409, ids)), "80020006");
  EXPECT_EQ(ids[0], 8);
  EXPECT_EQ(ids[1], id_unknown);
  EXPECT_EQ(ids[2], 1);
  EXPECT_EQ(drill->GetIDsOfNames(Guid(), nullptr, 1, 0x409, &id), null_pointer);
  EXPECT_EQ(drill->GetIDsOfNames(Guid(), names, 0, 0x409, &id), null_pointer);
}

TEST(CallableWrapper, AReleasedObjectIsRefused) {
  auto held = shown("ModelParts");
  const auto container =
      query<ConnectionPointContainer>(held.get(), iid_connection_point_container);
  Dispatch* late = held.get();
  std::int32_t count = 0;
  EXPECT_EQ(call_at(late, 1, &count), ok);
  container->Release();
  EXPECT_EQ(late->Release(), 0u);
  // Every further use comes too late, and comes back with an error.
  EXPECT_EQ(late->Release(), 0u);
  EXPECT_EQ(late->AddRef(), 0u);
  void* out = &count;
  EXPECT_EQ(late->QueryInterface(iid_unknown, &out), disconnected);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(late->Invoke(2, Guid(), 0x409, call_get, nullptr, nullptr, nullptr, nullptr),
            disconnected);
  EXPECT_EQ(call_at(late, 1, &count), disconnected);
  Holder<ConnectionPoint> point;
  EXPECT_EQ(container->FindConnectionPoint(model_parts_table.event_interface_id, point.put()),
            disconnected);
}

/// Calls a method with one whole number and answers its number, also from the description.
std::string failure_of(Dispatch* object, const char16_t* name, std::uint16_t flags,
                       ComVariant value) {
  std::int32_t id = id_unknown;
  object->GetIDsOfNames(Guid(), &name, 1, 0x409, &id);
  CallParameters parameters{&value, nullptr, 1, 0};
  ComVariant result;
  const Result done =
      object->Invoke(id, Guid(), 0x409, flags, &parameters, &result, nullptr, nullptr);
  clear(result);
  return done < 0 ? hex(done) : "none";
}

TEST(CallableWrapper, WhatWasNotDoneIsNoSuccess) {
  EXPECT_EQ(failure_of(shown("ModelParts").get(), u"Remove", call_method, of(7)), "800A0009");
  EXPECT_EQ(failure_of(shown("LinkedBooks").get(), u"Remove", call_method, of(7)), "800A0009");
  EXPECT_EQ(failure_of(shown("LinkList").get(), u"Links", call_get, of(1)), "800A0009");
  const auto parts = shown("ModelParts");
  ComVariant position = of(7);
  EXPECT_EQ(hex(call_at(parts.get(), 3, position)), "800A0009");  // Remove, by its place
  EXPECT_EQ(failure_of(parts.get(), u"Item", call_get, of(7)), "none");
}

TEST(CallableWrapper, ByValueParametersLeaveTheClientsVariable) {
  const auto part = shown("ModelPart");
  ComVariant two;
  two.type = vt_i2;
  two.i2 = 2;
  ComVariant reference;
  reference.type = vt_by_ref | vt_variant;
  reference.pointer = &two;
  EXPECT_EQ(failure_of(part.get(), u"AddressLong", call_get, reference), "none");
  EXPECT_EQ(two.type, vt_i2);
}

TEST(CallableWrapper, DecimalsAreTaken) {
  const auto drill = shown("DrillDown");
  ComVariant decimal;
  decimal.type = vt_decimal;
  decimal.reserved[0] = 1;  // one place behind the point
  decimal.bits = 120;
  CallParameters parameters{&decimal, &id_assigned_value, 1, 1};
  EXPECT_EQ(drill->Invoke(12, Guid(), 0x409, call_put, &parameters, nullptr, nullptr, nullptr), ok);
  ComVariant result;
  CallParameters none{};
  EXPECT_EQ(drill->Invoke(12, Guid(), 0x409, call_get, &none, &result, nullptr, nullptr), ok);
  EXPECT_EQ(result.i4, 12);
}

TEST(CallableWrapper, AConnectionPointIsAnObjectOfItsOwn) {
  const auto part = shown("ModelPart");
  const auto container =
      query<ConnectionPointContainer>(part.get(), iid_connection_point_container);
  Holder<ConnectionPoint> point, again;
  ASSERT_EQ(container->FindConnectionPoint(model_part_table.event_interface_id, point.put()), ok);
  ASSERT_EQ(container->FindConnectionPoint(model_part_table.event_interface_id, again.put()), ok);
  EXPECT_EQ(point.get(), again.get());
  const auto identity = query<Unknown>(point.get(), iid_unknown);
  EXPECT_EQ(query<ConnectionPoint>(identity.get(), iid_connection_point).get(), point.get());
  Holder<ConnectionPointContainer> owner;
  ASSERT_EQ(point->GetConnectionPointContainer(owner.put()), ok);
  EXPECT_EQ(query<Unknown>(owner.get(), iid_unknown).get(), part.get());
}

}  // namespace
}  // namespace qto::server
