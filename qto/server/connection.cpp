#include "qto/server/connection.hpp"

#include <stdexcept>
#include <utility>

#include "qto/com/convert.hpp"

namespace qto::server {
namespace {

class CheckedSink final : public EventSink {
 public:
  CheckedSink(const ClassTable& table, Ref<EventSink> sink)
      : table_(&table), sink_(std::move(sink)) {}

  void raise(std::int32_t id, std::span<Variant> arguments) override {
    const EventMember& event = table_->events[static_cast<std::size_t>(id) - 1];
    std::vector<Variant> shown(arguments.begin(), arguments.end());
    sink_->raise(id, shown);
    for (std::size_t i = 0; i < shown.size(); ++i)
      if (argument_at(event.arguments, i).by_reference && fits(shown[i], event.types[i]))
        arguments[i] = std::move(shown[i]);
  }

 private:
  static bool fits(Variant& answer, const Type& type) {
    if (convert(answer, type) != Conversion::done) return false;
    const Ref<Object> object = answer.object();
    return !object || type.name.empty() || object->TypeName() == type.name;
  }
  const ClassTable* table_;
  Ref<EventSink> sink_;
};

}  // namespace

Connection::Connection(const ClassTable& table, Ref<Object> source, const Ref<EventSink>& sink)
    : table_(&table), source_(std::move(source)) {
  if (table.events.empty()) throw std::invalid_argument("the class raises no events");
  std::int32_t id = 0;
  for (const EventMember& event : table.events) tokens_.push_back(event.add(*source_, ++id, sink));
}

void Connection::disconnect() {
  for (std::size_t i = 0; i < tokens_.size(); ++i) table_->events[i].remove(*source_, tokens_[i]);
  tokens_.clear();
  source_ = nullptr;
}

Ref<EventSink> checked_sink(const ClassTable& table, Ref<EventSink> sink) {
  return make_ref<CheckedSink>(table, std::move(sink));
}

}  // namespace qto::server
