#include "qto/server/com_sink.hpp"

#include <vector>

#include "qto/com/convert.hpp"
#include "qto/server/connection.hpp"
#include "qto/server/dispatch.hpp"
#include "qto/server/face.hpp"

namespace qto::server::com {
namespace {

class ClientSink final : public EventSink {
 public:
  ClientSink(const ClassTable& table, Dispatch* client) : table_(table), client_(client) {}
  ~ClientSink() override { client_->Release(); }

  void raise(std::int32_t id, std::span<Variant> arguments) override {
    const EventMember& event = table_.events[static_cast<std::size_t>(id) - 1];
    const std::size_t count = arguments.size();
    std::vector<ComVariant> held(count), passed(count);
    for (std::size_t i = 0; i < count; ++i) {
      held[i] = to_com(arguments[i]);
      passed[count - 1 - i] = held[i];
      if (argument_at(event.arguments, i).by_reference) refer_to(passed[count - 1 - i], held[i]);
    }
    CallParameters parameters{passed.data(), nullptr, static_cast<std::uint32_t>(count), 0};
    const Result called =
        client_->Invoke(id, Guid(), 0x409, call_method, &parameters, nullptr, nullptr, nullptr);
    for (std::size_t i = 0; i < count; ++i) {
      if (called >= 0 && argument_at(event.arguments, i).by_reference) read(held[i], arguments[i]);
      clear(held[i]);
    }
  }

 private:
  static void refer_to(ComVariant& reference, ComVariant& held) {
    reference = ComVariant();
    reference.type = held.type | vt_by_ref;
    reference.pointer = &held.bits;
  }
  static void read(const ComVariant& held, Variant& answer) {
    try {
      answer = from_com(held);
    } catch (const AutomationError&) {
      // An object that is none of ours: the preset stands.
    }
  }
  const ClassTable& table_;
  Dispatch* client_;
};

}  // namespace

Ref<EventSink> sink_of(const ClassTable& table, Dispatch* client) {
  return checked_sink(table, make_ref<ClientSink>(table, client));
}

}  // namespace qto::server::com
