#include "qto/server/face.hpp"

#include <cstring>
#include <deque>
#include <memory>
#include <typeinfo>
#include <unordered_map>
#include <utility>

#include "qto/com/errors.hpp"
#include "qto/com/remote_object.hpp"
#include "qto/server/arguments.hpp"
#include "qto/server/enumerator_face.hpp"
#include "qto/server/face_class.hpp"
#include "qto/server/module.hpp"
#include "qto/server/names.hpp"
#include "qto/server/type_info.hpp"

namespace qto::server::com {
namespace {

std::unordered_map<const Object*, std::unique_ptr<Face>>& faces() {
  static std::unordered_map<const Object*, std::unique_ptr<Face>> all;
  return all;
}

/// Keeps the last faces that were released, so that a client that uses one once too often meets an
/// error and not memory of somebody else.
void keep_for_late_calls(std::unique_ptr<Face> face) {
  constexpr std::size_t most = 1024;
  static std::deque<std::unique_ptr<Face>> released;
  released.push_back(std::move(face));
  if (released.size() > most) released.pop_front();
}

/// The interface that answers the object itself, uncounted: for libraries of one build in one
/// process. On Windows each library has a run-time library of its own, through which no exception
/// could pass; there it is known to this one alone.
Guid native_object_id() {
  Guid id = own_guid(0xFFF0);
#ifdef _WIN32
  static const char here = 0;
  const char* const own = &here;
  std::memcpy(id.data4.data(), &own, sizeof own);
#endif
  return id;
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
  return self->face->query(id, out);
}
std::uint32_t QTO_CALL add_reference(Dual* self) { return self->face->add_ref(); }
std::uint32_t QTO_CALL release_reference(Dual* self) { return self->face->release(); }
Result QTO_CALL get_type_info_count(Dual*, std::uint32_t* count) {
  if (!count) return null_pointer;
  *count = 1;
  return ok;
}
Result QTO_CALL get_type_info(Dual* self, std::uint32_t index, std::uint32_t, TypeInfo** out) {
  if (!out) return null_pointer;
  *out = nullptr;
  if (index != 0) return bad_index;
  return type_info_of(self->face->table(), TypePart::default_interface, out);
}
Result QTO_CALL get_ids_of_names(Dual* self, const Guid&, const char16_t* const* names,
                                 std::uint32_t count, std::uint32_t, std::int32_t* ids) {
  return ids_of_names(self->face->table(), names, count, ids);
}
Result QTO_CALL invoke_member(Dual* self, std::int32_t id, const Guid&, std::uint32_t,
                              std::uint16_t flags, CallParameters* parameters, ComVariant* result,
                              ExceptionInfo* exception, std::uint32_t* bad_argument) {
  return self->face->invoke(id, flags, parameters, result, exception, bad_argument);
}

}  // namespace

std::vector<const void*> Face::dispatch_functions() {
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

Face::Face(Ref<Object> object, const ClassTable& table)
    : dual_{function_table(table), this},
      object_(std::move(object)),
      table_(table),
      class_info_(*dispatch(), table),
      events_(*this, *dispatch(), table) {
  module_add_use();
}

Face& Face::of(const Ref<Object>& object) {
  auto& face = faces()[object.get()];
  if (!face) {
    const ClassTable* table = table_of(*object);
    if (table) face = std::make_unique<Face>(object, *table);
  }
  if (face) return *face;
  faces().erase(object.get());
  throw CallFailure(CallError::type_mismatch);
}

Result Face::query(const Guid& id, void** out) noexcept {
  if (!out) return null_pointer;
  *out = nullptr;
  if (!object_) return disconnected;
  if (id == native_object_id()) {
    *out = object_.get();
    return ok;
  }
  if (id == iid_unknown || id == iid_dispatch || id == table_.interface_id)
    *out = dispatch();
  else if (id == iid_provide_class_info || id == iid_provide_class_info_2)
    *out = static_cast<ProvideClassInfo2*>(&class_info_);
  else if (id == iid_connection_point_container && !table_.events.empty())
    *out = &events_.container();
  else
    return no_interface;
  add_ref();
  return ok;
}

std::uint32_t Face::add_ref() noexcept { return object_ ? ++count_ : 0; }

std::uint32_t Face::release() noexcept {
  if (!object_) return 0;
  const std::uint32_t left = --count_;
  if (left == 0) retire();
  return left;
}

void Face::retire() noexcept {
  auto entry = faces().extract(object_.get());
  events_.disconnect();
  // Destructors that run from here on may release other faces.
  const Ref<Object> last = std::move(object_);
  keep_for_late_calls(std::move(entry.mapped()));
  module_release_use();
}

Result Face::invoke(std::int32_t id, std::uint16_t flags, CallParameters* parameters,
                    ComVariant* result, ExceptionInfo* exception,
                    std::uint32_t* bad_argument) noexcept {
  const Ref<Object> keep = object_;  // a handler may release the last reference meanwhile
  if (!keep) return disconnected;
  CallParameters none{};
  CallParameters& given = parameters ? *parameters : none;
  try {
    CallArguments arguments = read_arguments(given);
    const Variant answer = server::invoke(table_, *keep, id, flags, arguments);
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

Result QTO_CALL Face::ClassInfo::GetClassInfo(TypeInfo** out) {
  return type_info_of(table_, TypePart::whole_class, out);
}

Result QTO_CALL Face::ClassInfo::GetGUID(std::uint32_t kind, Guid* out) {
  if (!out) return null_pointer;
  *out = Guid();
  if (kind != default_event_interface || table_.events.empty()) return invalid_argument;
  *out = table_.event_interface_id;
  return ok;
}

Unknown* face_of(const Ref<Object>& object) {
  if (auto* foreign = dynamic_cast<RemoteObject*>(object.get())) return foreign->remote_reference();
  if (auto walk = ref_cast<Enumerator>(object)) return enumerator_face(std::move(walk));
  Dispatch* face = Face::of(object).dispatch();
  face->AddRef();
  return face;
}

Ref<Object> object_behind(Unknown& unknown) {
  void* native = nullptr;
  if (unknown.QueryInterface(native_object_id(), &native) == ok && native)
    return Ref<Object>(static_cast<Object*>(native));
  if (!this_module().adopt) throw CallFailure(CallError::type_mismatch);
  return this_module().adopt(unknown);
}

ObjectDoor& faces_door() {
  class Faces final : public ObjectDoor {
   public:
    Unknown* show(const Ref<Object>& object) override { return face_of(object); }
    Ref<Object> take(Unknown& unknown) override { return object_behind(unknown); }
  };
  static Faces door;
  return door;
}

ComVariant to_com(const Variant& value) {
  ComVariant out = to_com(value, faces_door());
  if (out.type == vt_dispatch && ref_cast<Enumerator>(value.object())) out.type = vt_unknown;
  return out;
}

}  // namespace qto::server::com
