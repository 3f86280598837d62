#include "qto/server/wrappers/callable_wrapper.hpp"
#include "qto/server/wrappers/marshaling.hpp"

#include <atomic>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <typeinfo>
#include <unordered_map>
#include <utility>

#include "qto/com/errors.hpp"
#include "qto/com/values.hpp"
#include "qto/server/calls/dispatch.hpp"
#include "qto/server/description/type_info.hpp"
#include "qto/server/module/module.hpp"
#include "qto/server/reports/report_log.hpp"

namespace qto::server {
namespace {

using Kept = std::unique_ptr<CallableWrapper>;

/// The wrappers of the objects of all threads. Each is used by the thread of its object; this table
/// alone is shared.
class WrapperTable {
 public:
  /// The wrapper of an object; null where its class cannot be shown.
  CallableWrapper* find_or_make(const Ref<Object>& object) {
    const std::lock_guard lock(guard_);
    const auto found = live_.find(object.get());
    if (found != live_.end()) return found->second.get();
    const ClassTable* table = table_of(*object);
    if (!table) return nullptr;
    auto made = std::make_unique<CallableWrapper>(object, *table);
    return live_.emplace(object.get(), std::move(made)).first->second.get();
  }
  /// Takes out the wrapper of an object and keeps it among the last that were released, so that a
  /// client that uses one once too often meets an error and not memory of somebody else.
  void retire(const Object* object) noexcept {
    constexpr std::size_t most = 1024;
    Kept oldest;
    const std::lock_guard lock(guard_);
    auto entry = live_.extract(object);
    released_.push_back(std::move(entry.mapped()));
    if (released_.size() <= most) return;
    oldest = std::move(released_.front());
    released_.pop_front();
  }

 private:
  std::mutex guard_;
  std::unordered_map<const Object*, Kept> live_;
  std::deque<Kept> released_;
};

// Plain, for clients may release after the statics have gone.
std::mutex making;
constinit WrapperTable* all = nullptr;

WrapperTable& wrappers() {
  const std::lock_guard lock(making);
  if (!all) all = new WrapperTable;
  return *all;
}

/// The interface that answers the object itself, uncounted: for libraries of one build in one
/// process. On Windows each library has a run-time library of its own, through which no exception
/// could pass; there it is known to this one alone. Libraries of another version, whose objects may
/// be laid out otherwise, do not know it: they are driven by name.
Guid native_object_id() {
  Guid id = own_guid(0xFFF0);
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char c : std::string_view(QTO_VERSION))
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  std::memcpy(id.data4.data(), &hash, sizeof hash);
#ifdef _WIN32
  static const char here = 0;
  const char* const own = &here;
  std::memcpy(id.data4.data(), &own, sizeof own);
#endif
  return id;
}

/// The interface that answers the marshaler of the library that a wrapper belongs to, uncounted.
Guid marshaler_id() {
  Guid id = native_object_id();
  ++id.data1;
  return id;
}

/// The marshaler of the library whose objects were handed over last: it has the wrappers of its
/// objects, and one object is one reference wherever it is asked for.
std::atomic<ObjectMarshaler*> other_library{nullptr};

void note_library(Unknown& unknown) {
  void* found = nullptr;
  if (unknown.QueryInterface(marshaler_id(), &found) == ok && found != &object_marshaler())
    other_library = static_cast<ObjectMarshaler*>(found);
}

void describe(ExceptionInfo& exception, Result number) {
  exception = ExceptionInfo();
  exception.number = number;
  const std::string text = current_error_text();
  exception.source = make_text(this_module().library->name);
  if (!text.empty()) exception.description = make_text(text);
}

// The seven functions that every function table begins with.
Result QTO_CALL query_interface(Dual* self, const Guid& id, void** out) {
  return self->wrapper->query(id, out);
}
std::uint32_t QTO_CALL add_reference(Dual* self) { return self->wrapper->add_ref(); }
std::uint32_t QTO_CALL release_reference(Dual* self) { return self->wrapper->release(); }
Result QTO_CALL get_type_info_count(Dual*, std::uint32_t* count) {
  if (!count) return null_pointer;
  *count = 1;
  return ok;
}
Result QTO_CALL get_type_info(Dual* self, std::uint32_t index, std::uint32_t, TypeInfo** out) {
  if (!out) return null_pointer;
  *out = nullptr;
  if (index != 0) return bad_index;
  return type_info_of(self->wrapper->table(), TypePart::default_interface, out);
}
Result QTO_CALL get_ids_of_names(Dual* self, const Guid& reserved, const char16_t* const* names,
                                 std::uint32_t count, std::uint32_t, std::int32_t* ids) {
  if (reserved != Guid()) return unknown_interface;
  return ids_of_names(self->wrapper->table(), names, count, ids);
}
Result QTO_CALL invoke_member(Dual* self, std::int32_t id, const Guid& reserved, std::uint32_t,
                              std::uint16_t flags, CallParameters* parameters, ComVariant* result,
                              ExceptionInfo* exception, std::uint32_t* bad_argument) {
  if (reserved != Guid()) return unknown_interface;
  return self->wrapper->invoke(id, flags, parameters, result, exception, bad_argument);
}

}  // namespace

std::vector<const void*> CallableWrapper::dispatch_functions() {
  // Before the first function lies what the compiler puts there in tables of its own: the offset of
  // the whole object and its type, by which run-time checks know it.
  return {nullptr,
          &typeid(Dispatch),
          reinterpret_cast<const void*>(&query_interface),
          reinterpret_cast<const void*>(&add_reference),
          reinterpret_cast<const void*>(&release_reference),
          reinterpret_cast<const void*>(&get_type_info_count),
          reinterpret_cast<const void*>(&get_type_info),
          reinterpret_cast<const void*>(&get_ids_of_names),
          reinterpret_cast<const void*>(&invoke_member)};
}

CallableWrapper::CallableWrapper(Ref<Object> object, const ClassTable& table)
    : dual_{function_table(table), this},
      object_(std::move(object)),
      table_(table),
      class_info_(*dispatch(), table),
      events_(*dispatch(), object_, table, object_marshaler()) {
  module_add_use();
}

CallableWrapper& CallableWrapper::of(const Ref<Object>& object) {
  if (CallableWrapper* wrapper = wrappers().find_or_make(object)) return *wrapper;
  throw CallFailure(CallError::type_mismatch);
}

Result CallableWrapper::query(const Guid& id, void** out) noexcept {
  if (!out) return null_pointer;
  *out = nullptr;
  if (!object_) return disconnected;
  if (id == native_object_id()) {
    *out = object_.get();
    return ok;
  }
  if (id == marshaler_id()) {
    *out = &object_marshaler();
    return ok;
  }
  if (id == iid_unknown || id == iid_dispatch || id == table_.interface_id)
    *out = dispatch();
  else if (id == iid_provide_class_info || id == iid_provide_class_info_2)
    *out = static_cast<ProvideClassInfo2*>(&class_info_);
  else if (id == iid_connection_point_container && !table_.events.empty())
    *out = &events_;
  else
    return no_interface;
  add_ref();
  return ok;
}

std::uint32_t CallableWrapper::add_ref() noexcept { return object_ ? ++count_ : 0; }

std::uint32_t CallableWrapper::release() noexcept {
  if (!object_) return 0;
  const std::uint32_t left = --count_;
  if (left == 0) retire();
  return left;
}

void CallableWrapper::retire() noexcept {
  // Destructors that run from here on may release other wrappers.
  const Ref<Object> last = std::move(object_);
  wrappers().retire(last.get());
  module_release_use();
}

Result CallableWrapper::invoke(std::int32_t id, std::uint16_t flags, CallParameters* parameters,
                               ComVariant* result, ExceptionInfo* exception,
                               std::uint32_t* bad_argument) noexcept {
  const Ref<Object> keep = object_;  // a handler may release the last reference meanwhile
  if (!keep) return disconnected;
  CallParameters none{};
  CallParameters& given = parameters ? *parameters : none;
  try {
    CallArguments arguments = read_arguments(given);
    const ClientCall call;
    const Variant answer = server::invoke(table_, *keep, id, flags, arguments);
    call.check(table_.name, member_name(table_, id));
    answer_arguments(given, arguments);
    if (result) *result = to_com(answer);
    return ok;
  } catch (const CallFailure& failed) {
    // Clients count the arguments as they lie in the array: the last one first.
    if (bad_argument && failed.argument && *failed.argument < given.count)
      *bad_argument = given.count - 1 - *failed.argument;
    return failed.number;
  } catch (...) {
    const Result number = current_error_number();
    if (!exception) return number;
    return guarded([&] {
      try {
        throw;
      } catch (...) {
        describe(*exception, number);
      }
      return see_exception;
    });
  }
}

Result QTO_CALL CallableWrapper::ClassInfo::GetClassInfo(TypeInfo** out) {
  return type_info_of(table_, TypePart::whole_class, out);
}

Result QTO_CALL CallableWrapper::ClassInfo::GetGUID(std::uint32_t kind, Guid* out) {
  if (!out) return null_pointer;
  *out = Guid();
  if (kind != default_event_interface || table_.events.empty()) return invalid_argument;
  *out = table_.event_interface_id;
  return ok;
}

Unknown* wrapper_of(const Ref<Object>& object) {
  if (auto* foreign = dynamic_cast<RemoteObject*>(object.get())) return foreign->remote_reference();
  if (auto walk = ref_cast<Enumerator>(object)) return wrap_enumerator(std::move(walk));
  ObjectMarshaler* const other = other_library;
  if (other && !is_own(*object)) return other->marshal(object);
  Dispatch* wrapper = CallableWrapper::of(object).dispatch();
  wrapper->AddRef();
  return wrapper;
}

Ref<Object> object_behind(Unknown& unknown) {
  void* native = nullptr;
  if (unknown.QueryInterface(native_object_id(), &native) == ok && native) {
    note_library(unknown);
    return Ref<Object>(static_cast<Object*>(native));
  }
  if (!this_module().adopt) throw CallFailure(CallError::type_mismatch);
  return this_module().adopt(unknown);
}

ObjectMarshaler& object_marshaler() {
  class ServerMarshaler final : public ObjectMarshaler {
   public:
    Unknown* marshal(const Ref<Object>& object) override { return wrapper_of(object); }
    Ref<Object> unmarshal(Unknown& unknown) override { return object_behind(unknown); }
  };
  static ServerMarshaler marshaler;
  return marshaler;
}

ComVariant to_com(const Variant& value) {
  ComVariant out = to_com(value, object_marshaler());
  if (out.type == vt_dispatch && ref_cast<Enumerator>(value.object())) out.type = vt_unknown;
  return out;
}

void forget_wrappers() noexcept {
  const std::lock_guard lock(making);
  delete std::exchange(all, nullptr);
}

}  // namespace qto::server
