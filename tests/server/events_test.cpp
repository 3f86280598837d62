#include <gtest/gtest.h>

#include <functional>

#include "qto/server/events/connection.hpp"
#include "tests/server/late_bound.hpp"
#include "tests/support/text_book.hpp"

namespace qto::server {
namespace {

using test::Books;

class Handler final : public EventSink {
 public:
  using Answer = std::function<void(std::int32_t, std::span<Variant>)>;
  explicit Handler(Answer answer) : answer_(std::move(answer)) {}
  void raise(std::int32_t id, std::span<Variant> arguments) override { answer_(id, arguments); }

 private:
  Answer answer_;
};

/// A connection that ends with its holder.
class Connection {
 public:
  Connection(const LateBound& source, Handler::Answer answer)
      : source_(source.object),
        list_(ConnectionList::of(*source.table, *source_)),
        cookie_(list_->add(make_ref<Handler>(std::move(answer)))) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() { disconnect(); }
  void disconnect() { list_->remove(cookie_); }

 private:
  Ref<Object> source_;
  Ref<ConnectionList> list_;
  std::uint32_t cookie_;
};

int inputs_of(const LateBound& drill, const Ref<Object>& start) {
  drill.put("StartUnderlyingObject", Variant(start));
  drill.run("FindInputs");
  return *drill.object_of("InputCells").get("Count").get_if<std::int32_t>();
}

constexpr std::int32_t before_get_precedents = 3;

TEST(Events, AnswersComeBackThroughTheirArguments) {
  Books books("A1=2; B1==A1*A1; C1==B1*A1; D1==C1");
  const LateBound drill("DrillDown");
  std::string seen;
  Connection connection(drill, [&](std::int32_t id, std::span<Variant> arguments) {
    if (id != before_get_precedents) return;
    ASSERT_EQ(arguments.size(), 2u);
    EXPECT_EQ(arguments[1], Variant(false));
    seen += LateBound(arguments[0].object()).get("AddressShort").text() + " ";
    arguments[1] = Variant(-1);  // Cancel, as a script writes True
  });
  inputs_of(drill, books.range("D1"));
  EXPECT_EQ(seen, "D1 ");  // nothing below it was reached
  connection.disconnect();
  EXPECT_EQ(inputs_of(drill, books.range("D1")), 1);
  EXPECT_EQ(seen, "D1 ");
}

TEST(Events, WrongAnswersLeaveThePresets) {
  Books books("A1=2; B1==A1*A1");
  const LateBound drill("DrillDown");
  Connection connection(drill, [&](std::int32_t id, std::span<Variant> arguments) {
    if (id != before_get_precedents) return;
    arguments[0] = Variant(Ref<Object>(make_ref<DrillOptions>()));
    arguments[1] = Variant(ErrorValue::na);
  });
  EXPECT_EQ(inputs_of(drill, books.range("B1")), 1);
}

TEST(Events, TextAnswersComeBackToo) {
  const LateBound part("ModelPart");
  part.put("Title", Variant("good"));
  std::string seen;
  const Connection connection(part, [&](std::int32_t id, std::span<Variant> arguments) {
    seen += part.table->events[static_cast<std::size_t>(id) - 1].name;
    seen += " " + arguments[0].text();
    arguments[1] = Variant("better");
  });
  part.run("Create", {Variant(), Variant("Range")});
  EXPECT_EQ(seen, "TitleChanged good");
  EXPECT_EQ(part.get("Title"), Variant("better"));
}

TEST(Events, ClassesWithoutEventsRefuse) {
  EXPECT_THROW(Connection(LateBound("DrillOptions"), {}), std::invalid_argument);
}

TEST(Events, ConnectionsLastAsLongAsTheObjectAndDoNotKeepIt) {
  auto part = std::make_unique<LateBound>("ModelPart");
  const ClassTable& table = *part->table;
  part->put("Title", Variant("before"));
  int changes = 0;
  const Ref<EventSink> sink = make_ref<Handler>([&](auto, auto) { ++changes; });
  const std::uint32_t cookie = ConnectionList::of(table, *part->object)->add(sink);
  part->run("Create", {Variant(), Variant("Range")});
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(ConnectionList::of(table, *part->object)->sinks().size(), 1u);
  EXPECT_TRUE(ConnectionList::of(table, *part->object)->remove(cookie));
  EXPECT_EQ(sink->ref_count(), 1u);
  ConnectionList::of(table, *part->object)->add(sink);
  EXPECT_EQ(part->object->ref_count(), 1u);
  part.reset();
  EXPECT_EQ(sink->ref_count(), 1u);
}

TEST(Events, ASinkIsNotCalledOnceItIsDisconnected) {
  const LateBound part("ModelPart");
  part.put("Title", Variant("before"));
  const Ref<ConnectionList> list = ConnectionList::of(*part.table, *part.object);
  std::uint32_t second = 0;
  int first_calls = 0, second_calls = 0;
  list->add(make_ref<Handler>([&](auto, auto) {
    ++first_calls;
    list->remove(second);
  }));
  second = list->add(make_ref<Handler>([&](auto, auto) { ++second_calls; }));
  part.run("Create", {Variant(), Variant("Range")});
  EXPECT_EQ(first_calls, 1);
  EXPECT_EQ(second_calls, 0);
}

}  // namespace
}  // namespace qto::server
