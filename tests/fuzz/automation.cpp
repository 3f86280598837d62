#include <array>
#include <string>

#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"
#include "qto/server/calls/dispatch.hpp"
#include "qto/server/engine_tables/library.hpp"
#include "qto/server/module/module.hpp"

namespace {

using namespace qto;
using namespace qto::server;

/// A script read from bytes: it calls members of the objects that it has, with values of every
/// kind.
class Script {
 public:
  Script(const std::uint8_t* data, std::size_t size) : rest_(data, data + size) {
    const auto sheet = application_.Workbooks()->Add()->Worksheets(1);
    const char* const typed[] = {"1", "-2.5", "text", "=A1+A2", "=SUM(A1:A4)", "=1/0", "=B9"};
    for (int row = 1; row <= 7; ++row) sheet->Cells(row, 1)->put_Formula(typed[row - 1]);
    for (const ClassTable* table : engine_library().classes)
      if (table->create) held_.push_back(table->create());
    held_.push_back(sheet);
    held_.push_back(sheet->Cells(5, 1));
    held_.push_back(sheet->Parent());
  }

  void run() {
    for (int calls = 0; !rest_.empty() && calls < 40; ++calls) call();
  }

 private:
  std::uint8_t next() {
    if (rest_.empty()) return 0;
    const std::uint8_t byte = rest_.front();
    rest_ = rest_.subspan(1);
    return byte;
  }

  std::string text() {
    const std::size_t length = std::min<std::size_t>(next() % 32, rest_.size());
    std::string taken(reinterpret_cast<const char*>(rest_.data()), length);
    rest_ = rest_.subspan(length);
    return taken;
  }

  Variant value() {
    switch (const std::uint8_t kind = next(); kind % 12) {
      case 0:
        return {};
      case 1:
        return Null();
      case 2:
        return kind > 127;
      case 3:
        return std::int32_t{next()} - 2;
      case 4:
        return std::array{-1e300, -1.0, 0.5, 1e10, 1e300, 2147483648.0}[next() % 6];
      case 5:
        return ErrorValue::na;
      case 6:
        return text();
      case 7:
        return std::array{"A1", "A1:B9", "A5", "Sheet1", "*", ""}[next() % 6];
      case 8:
        return "=" + text();
      case 9:
        return Variant(Ref<Object>());
      default:
        return held_[next() % held_.size()];
    }
  }

  void call() {
    const Ref<Object> object = held_[next() % held_.size()];
    const ClassTable* table = table_of(*object);
    if (!table) return;
    const Member& member = table->members[next() % table->members.size()];
    const std::uint8_t shape = next();
    CallArguments arguments;
    for (int count = shape % 5; count > 0; --count) arguments.values.push_back(value());
    const std::uint16_t flags = shape < 200 ? call_method | call_get : call_put | call_put_ref;
    try {
      const Variant answer = invoke(*table, *object, member.id, flags, arguments);
      if (answer.is_object() && answer.object() && held_.size() < 200)
        held_.push_back(answer.object());
    } catch (const std::exception&) {
      // Whatever a member raises becomes an error number of the call.
    }
  }

  std::span<const std::uint8_t> rest_;
  embedded::Application application_;
  std::vector<Ref<Object>> held_;
};

}  // namespace

/// Members of engine and host are called by name with arguments of every kind.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 1000) return -1;
  Script(data, size).run();
  return 0;
}
