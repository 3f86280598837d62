#include "qto/automation/event.hpp"

#include <gtest/gtest.h>

#include <string>

namespace qto {
namespace {

TEST(Event, PresetAnswersStandWithoutAHandler) {
  Event<int, bool&> asked;
  bool cancel = false;
  asked(1, cancel);
  EXPECT_FALSE(cancel);
  EXPECT_FALSE(asked);
}

TEST(Event, HandlersRunInOrderAndSeeEachOthersAnswers) {
  Event<std::string&> named;
  named.add([](std::string& name) { name += "a"; });
  const int middle = named.add([](std::string& name) { name += "b"; });
  named.add([](std::string& name) { name += "c"; });
  std::string name;
  named(name);
  EXPECT_EQ(name, "abc");
  named.remove(middle);
  named.remove(middle);
  named(name);
  EXPECT_EQ(name, "abcac");
}

TEST(Event, TokensAreNeverGivenTwice) {
  Event<> event;
  const int first = event.add([] {});
  event.remove(first);
  EXPECT_NE(event.add([] {}), first);
}

TEST(Event, HandlersMayComeAndGoWhileItIsRaised) {
  Event<> event;
  std::string log;
  int second = 0;
  int first = 0;
  first = event.add([&] {
    log += "1";
    event.remove(first);
    event.remove(second);
    event.add([&] { log += "3"; });
  });
  second = event.add([&] { log += "2"; });
  event();
  EXPECT_EQ(log, "12");  // the raise under way keeps the handlers that it started with
  event();
  EXPECT_EQ(log, "123");
}

TEST(Event, RaisingInsideAHandlerIsFine) {
  Event<int> event;
  int calls = 0;
  event.add([&](int depth) {
    ++calls;
    if (depth < 3) event(depth + 1);
  });
  event(1);
  EXPECT_EQ(calls, 3);
}

}  // namespace
}  // namespace qto
