// Engine and application in libraries of their own, each knowing the other by name alone.

#include <gtest/gtest.h>

#include "qto/com/memory.hpp"
#include "qto/com/values.hpp"
#include "qto/server/calls/dispatch.hpp"
#include "qto/server/engine_tables/library.hpp"
#include "qto/server/host_tables/library.hpp"
#include "tests/late_bound/played_server.hpp"
#include "tests/server/module_client.hpp"

namespace qto::test {
namespace {

using namespace server;
using Held = com::Holder<com::Dispatch>;

std::string text_of(com::Dispatch* object, const char16_t* name,
                    std::initializer_list<com::ComVariant> arguments = {}) {
  com::ComVariant result;
  EXPECT_EQ(call(object, name, call_get | call_method, arguments, &result), 0);
  const std::string text = result.type == com::vt_text ? com::read_text(result.text) : "?";
  com::clear(result);
  return text;
}

struct Modules : testing::Test {
  Library host{QTO_HOST_MODULE}, engine{QTO_ENGINE_MODULE};

  /// A cell of the example as the host library shows it.
  Held cell(const char16_t* sheet_name, const char16_t* address) {
    const std::string path = QTO_SOURCE_DIR "/examples/workbooks/plan.xlsx";
    const Bstr file(std::u16string(path.begin(), path.end())), name(sheet_name), at(address);
    const Held application(host.create(server::host_tables::application_table.class_id));
    const Held books(object_of(application.get(), u"Workbooks"));
    const Held book(object_of(books.get(), u"Open", {file.variant()}));
    const Held sheet(object_of(book.get(), u"Worksheets", {name.variant()}));
    return Held(object_of(sheet.get(), u"Range", {at.variant()}));
  }
  /// The addresses of the inputs of a start object.
  std::string inputs(com::Dispatch* start, Held* first = nullptr) {
    const Held drill(engine.create(server::engine_tables::drill_down_table.class_id));
    EXPECT_EQ(call(drill.get(), u"StartUnderlyingObject", call_put_ref, {of(start)}), 0);
    EXPECT_EQ(call(drill.get(), u"FindInputs", call_method, {}), 0);
    const Held list(object_of(drill.get(), u"InputCells"));
    com::ComVariant count;
    EXPECT_EQ(call(list.get(), u"Count", call_get, {}, &count), 0);
    std::string all;
    for (std::int32_t i = 1; i <= count.i4; ++i) {
      Held part(object_of(list.get(), u"Item", {of(i)}));
      all +=
          text_of(part.get(), u"AddressLong", {of(1)}) + " " + text_of(part.get(), u"Text") + "\n";
      if (i == 1 && first) *first = std::move(part);
    }
    return all;
  }
};

TEST_F(Modules, AnotherServersObjectsAreDrilledByName) {
  PlayedServer server;
  std::string direct, by_name;
  {
    const Held start = cell(u"Summary", u"C7");
    ASSERT_TRUE(start);
    direct = inputs(start.get());
  }
  EXPECT_EQ(engine.call("DllCanUnloadNow"), 0);
  EXPECT_EQ(host.call("DllCanUnloadNow"), 0);
  {
    const auto veiled = server.stub_of(cell(u"Summary", u"C7"));
    auto* start = static_cast<com::Dispatch*>(veiled.get());
    Held first;
    by_name = inputs(start, &first);
    EXPECT_GT(server.calls, 100);
    // What goes out is the application's own object.
    const Held object(object_of(first.get(), u"UnderlyingObject"));
    ASSERT_TRUE(object);
    EXPECT_TRUE(server.covers(object.get()));
    const Held book(object_of(first.get(), u"Workbook"));
    EXPECT_TRUE(server.covers(book.get()));
    EXPECT_EQ(text_of(book.get(), u"Name"), "plan.xlsx");
  }
  EXPECT_EQ(by_name, direct);
  EXPECT_GT(direct.size(), 100u);
  EXPECT_EQ(engine.call("DllCanUnloadNow"), 0);
  EXPECT_EQ(server.held(), 0u);
  EXPECT_EQ(host.call("DllCanUnloadNow"), 0);
}

TEST_F(Modules, ObjectsOfOtherClassesAreRefused) {
  PlayedServer server;
  const Held drill(engine.create(server::engine_tables::drill_down_table.class_id));
  const auto refusal = [&](const com::Holder<com::Unknown>& object) {
    return static_cast<std::uint32_t>(call(drill.get(), u"StartUnderlyingObject", call_put_ref,
                                           {of(static_cast<com::Dispatch*>(object.get()))}));
  };
  EXPECT_EQ(
      refusal(server.stub_of(Held(host.create(server::host_tables::application_table.class_id)))),
      0x80040001);
  EXPECT_EQ(refusal(server.stub_of(
                Held(engine.create(server::engine_tables::drill_options_table.class_id)))),
            0x80040001);
  EXPECT_EQ(refusal(server.stub_of(cell(u"Summary", u"Z99"))), 0x80040002);
  EXPECT_EQ(refusal(server.stub_of(cell(u"Summary", u"C7:C8"))), 0x80040001);
}

}  // namespace
}  // namespace qto::test
