#include "qto/server/events/connection.hpp"

#include <mutex>
#include <stdexcept>
#include <unordered_map>
#include <utility>

#include "qto/com/conversion.hpp"
#include "qto/server/calls/dispatch.hpp"

namespace qto::server {
namespace {

/// The lists of the objects of all threads, each used by its own.
struct ListsByObject {
  std::mutex guard;
  std::unordered_map<const Object*, ConnectionList*> lists;
};
ListsByObject& lists_by_object() {
  static auto* const all = new ListsByObject;  // objects may go after the statics of the module
  return *all;
}

/// The arguments of an event on their way to a client's sink, the last one first.
class PassedArguments {
 public:
  PassedArguments(const EventMember& event, std::span<const Variant> values,
                  ObjectMarshaler& marshaler)
      : held_(values.size()), passed_(values.size()) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      held_[i] = to_com(values[i], marshaler);
      ComVariant& passed = passed_[values.size() - 1 - i];
      passed = held_[i];
      if (argument_at(event.arguments, i).by_reference) {
        passed = ComVariant();
        passed.type = held_[i].type | vt_by_ref;
        passed.pointer = &held_[i].bits;
      }
    }
  }
  PassedArguments(const PassedArguments&) = delete;
  PassedArguments& operator=(const PassedArguments&) = delete;
  ~PassedArguments() {
    for (ComVariant& held : held_) clear(held);
  }
  CallParameters parameters() {
    return {passed_.data(), nullptr, static_cast<std::uint32_t>(passed_.size()), 0};
  }
  const ComVariant& answer(std::size_t index) const { return held_[index]; }

 private:
  std::vector<ComVariant> held_, passed_;
};

}  // namespace

/// One connection; the handlers at the object's events hold it.
class ConnectionList::Link final : public EventSink {
 public:
  Link(Ref<ConnectionList> list, Ref<EventSink> sink, std::uint32_t cookie)
      : list_(std::move(list)), sink_(std::move(sink)), cookie_(cookie) {}
  ~Link() override { list_->links_.erase(cookie_); }

  void connect() {
    std::int32_t id = 0;
    for (const EventMember& event : list_->table_.events)
      tokens_.push_back(event.add(list_->source_, ++id, Ref<EventSink>(this)));
  }
  void disconnect() {
    sink_ = nullptr;
    const Ref<EventSink> keep(this);
    for (std::size_t i = 0; i < tokens_.size(); ++i)
      list_->table_.events[i].remove(list_->source_, tokens_[i]);
  }
  void raise(std::int32_t id, std::span<Variant> arguments) override {
    const Ref<EventSink> sink = sink_;  // it may disconnect itself
    if (!sink) return;
    const EventMember& event = list_->table_.events[static_cast<std::size_t>(id) - 1];
    std::vector<Variant> shown(arguments.begin(), arguments.end());
    sink->raise(id, shown);
    for (std::size_t i = 0; i < shown.size(); ++i)
      if (argument_at(event.arguments, i).by_reference &&
          convert(shown[i], event.types[i]) == Conversion::done)
        arguments[i] = std::move(shown[i]);
  }
  const Ref<EventSink>& sink() const noexcept { return sink_; }

 private:
  Ref<ConnectionList> list_;
  Ref<EventSink> sink_;  // null once disconnected
  std::uint32_t cookie_;
  std::vector<int> tokens_;
};

Ref<ConnectionList> ConnectionList::of(const ClassTable& table, Object& source) {
  if (table.events.empty()) throw std::invalid_argument("the class raises no events");
  ListsByObject& all = lists_by_object();
  const std::lock_guard lock(all.guard);
  ConnectionList*& list = all.lists[&source];
  if (list) return Ref<ConnectionList>(list);
  Ref<ConnectionList> made = make_ref<ConnectionList>(table, source);
  list = made.get();
  return made;
}

ConnectionList::~ConnectionList() {
  ListsByObject& all = lists_by_object();
  const std::lock_guard lock(all.guard);
  all.lists.erase(&source_);
}

std::uint32_t ConnectionList::add(Ref<EventSink> sink) {
  const Ref<Link> link = make_ref<Link>(Ref<ConnectionList>(this), std::move(sink), ++last_cookie_);
  links_.emplace(last_cookie_, link.get());
  link->connect();
  return last_cookie_;
}

bool ConnectionList::remove(std::uint32_t cookie) {
  const auto found = links_.find(cookie);
  if (found == links_.end()) return false;
  Link& link = *found->second;
  links_.erase(found);
  link.disconnect();  // letting go of the sink may come back here
  return true;
}

std::vector<std::pair<std::uint32_t, Ref<EventSink>>> ConnectionList::sinks() const {
  std::vector<std::pair<std::uint32_t, Ref<EventSink>>> all;
  for (const auto& [cookie, link] : links_) all.emplace_back(cookie, link->sink());
  return all;
}

void ClientSink::raise(std::int32_t id, std::span<Variant> arguments) {
  const EventMember& event = table_.events[static_cast<std::size_t>(id) - 1];
  PassedArguments passed(event, arguments, marshaler_);
  CallParameters parameters = passed.parameters();
  const Result called =
      client_->Invoke(id, Guid(), 0x409, call_method, &parameters, nullptr, nullptr, nullptr);
  if (called == operation_aborted) throw AutomationError(operation_aborted);
  if (called < 0) return;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (!argument_at(event.arguments, i).by_reference) continue;
    try {
      arguments[i] = from_com(passed.answer(i), marshaler_);
    } catch (const AutomationError&) {
      // An object that is none of ours: the preset stands.
    }
  }
}

}  // namespace qto::server
