#include "qto/automation/server/face.hpp"

#include <map>
#include <unordered_map>
#include <utility>

#include "qto/automation/server/com_sink.hpp"
#include "qto/automation/server/connection.hpp"
#include "qto/automation/server/dispatch.hpp"
#include "qto/automation/server/enumerator.hpp"
#include "qto/automation/server/module.hpp"
#include "qto/automation/text.hpp"

namespace qto::server::com {
namespace {

class Face;
std::unordered_map<const Object*, Face*>& faces() {
  static std::unordered_map<const Object*, Face*> all;
  return all;
}

/// The connection point of a face's event interface; it lives inside the face.
class EventPoint final : public ConnectionPoint {
 public:
  EventPoint(Unknown& owner, Ref<Object> source, const ClassTable& table)
      : owner_(owner), source_(std::move(source)), table_(table) {}

  Result QueryInterface(const Guid& id, void** out) override {
    if (id != iid_connection_point) return owner_.QueryInterface(id, out);
    *out = static_cast<ConnectionPoint*>(this);
    AddRef();
    return ok;
  }
  std::uint32_t AddRef() override { return owner_.AddRef(); }
  std::uint32_t Release() override { return owner_.Release(); }
  Result GetConnectionInterface(Guid* id) override {
    if (!id) return null_pointer;
    *id = table_.event_interface_id;
    return ok;
  }
  Result GetConnectionPointContainer(Unknown** out) override {
    return owner_.QueryInterface(iid_connection_point_container, reinterpret_cast<void**>(out));
  }
  Result Advise(Unknown* sink, std::uint32_t* cookie) override {
    if (!sink || !cookie) return null_pointer;
    void* dispatch = nullptr;
    if (sink->QueryInterface(table_.event_interface_id, &dispatch) != ok &&
        sink->QueryInterface(iid_dispatch, &dispatch) != ok)
      return failure(0x80040202);
    connections_.try_emplace(++last_cookie_, table_, source_,
                             sink_of(table_, static_cast<Dispatch*>(dispatch)));
    *cookie = last_cookie_;
    return ok;
  }
  Result Unadvise(std::uint32_t cookie) override {
    return connections_.erase(cookie) ? ok : no_connection;
  }
  Result EnumConnections(Unknown**) override { return not_implemented; }

 private:
  Unknown& owner_;
  Ref<Object> source_;
  const ClassTable& table_;
  std::map<std::uint32_t, Connection> connections_;
  std::uint32_t last_cookie_ = 0;
};

class Face final : public Dispatch, public ConnectionPointContainer {
 public:
  Face(Ref<Object> object, const ClassTable& table)
      : object_(std::move(object)),
        table_(table),
        point_(*static_cast<Dispatch*>(this), object_, table) {
    faces()[object_.get()] = this;
    module_add_use();
  }

  Result QueryInterface(const Guid& id, void** out) override {
    if (!out) return null_pointer;
    *out = nullptr;
    if (id == iid_native_object) {
      *out = object_.get();
      return ok;
    }
    if (id == iid_unknown || id == iid_dispatch || id == table_.interface_id)
      *out = static_cast<Dispatch*>(this);
    else if (id == iid_connection_point_container && !table_.events.empty())
      *out = static_cast<ConnectionPointContainer*>(this);
    else
      return no_interface;
    AddRef();
    return ok;
  }
  std::uint32_t AddRef() override { return ++count_; }
  std::uint32_t Release() override {
    const std::uint32_t left = --count_;
    if (left == 0) {
      faces().erase(object_.get());
      delete this;
      module_release_use();
    }
    return left;
  }

  Result GetTypeInfoCount(std::uint32_t* count) override {
    if (!count) return null_pointer;
    *count = 0;
    return ok;
  }
  Result GetTypeInfo(std::uint32_t, std::uint32_t, Unknown**) override { return not_implemented; }

  Result GetIDsOfNames(const Guid&, const char16_t* const* names, std::uint32_t count,
                       std::uint32_t, std::int32_t* ids) override {
    if (!names || !ids || count == 0) return null_pointer;
    const auto id = member_id(table_, text::from_utf16(names[0]));
    bool all = id.has_value();
    ids[0] = id.value_or(id_unknown);
    for (std::uint32_t i = 1; i < count; ++i) {
      const auto position =
          id ? argument_position(table_, *id, text::from_utf16(names[i])) : std::nullopt;
      ids[i] = position ? static_cast<std::int32_t>(*position) : id_unknown;
      all = all && position;
    }
    return all ? ok : static_cast<Result>(CallError::unknown_name);
  }

  Result Invoke(std::int32_t id, const Guid&, std::uint32_t, std::uint16_t flags,
                CallParameters* parameters, ComVariant* result, void*,
                std::uint32_t* bad_argument) override {
    const Ref<Object> keep = object_;  // a handler may release the last face meanwhile
    try {
      CallParameters none{};
      CallParameters& given = parameters ? *parameters : none;
      CallArguments arguments = read_arguments(given);
      const Variant answer = invoke(table_, *keep, id, flags, arguments);
      for (std::uint32_t i = 0; i < given.count; ++i)
        write_back(given.values[given.count - 1 - i], arguments.values[i]);
      if (result) *result = to_com(answer);
      return ok;
    } catch (const CallFailure& failed) {
      // Clients count the arguments as they lie in the array: the last one first.
      if (bad_argument && failed.argument && parameters && *failed.argument < parameters->count)
        *bad_argument = parameters->count - 1 - *failed.argument;
      return failed.number;
    } catch (...) {
      return current_error_number();
    }
  }

  Result EnumConnectionPoints(Unknown**) override { return not_implemented; }
  Result FindConnectionPoint(const Guid& id, ConnectionPoint** out) override {
    if (!out) return null_pointer;
    *out = nullptr;
    if (table_.events.empty() || id != table_.event_interface_id) return no_connection;
    *out = &point_;
    AddRef();
    return ok;
  }

 private:
  static CallArguments read_arguments(const CallParameters& given) {
    CallArguments arguments;
    constexpr std::int32_t left_out = static_cast<std::int32_t>(CallError::parameter_not_found);
    for (std::uint32_t i = 0; i < given.count; ++i) {
      const ComVariant& value = given.values[given.count - 1 - i];
      if (value.type == vt_error && value.i4 == left_out) {
        arguments.omitted.push_back(i);
        arguments.values.emplace_back();
        continue;
      }
      try {
        arguments.values.push_back(from_com(value));
      } catch (const CallFailure&) {
        throw CallFailure(CallError::type_mismatch, i);
      }
    }
    for (std::uint32_t i = 0; i < given.named_count; ++i)
      if (given.named[i] != id_assigned_value)
        arguments.named.push_back(
            {static_cast<std::uint32_t>(given.named[i]), given.count - 1 - i});
    return arguments;
  }

  Ref<Object> object_;
  const ClassTable& table_;
  EventPoint point_;
  std::uint32_t count_ = 0;
};

class EnumeratorFace final : public EnumVariant {
 public:
  explicit EnumeratorFace(Ref<Enumerator> walk) : walk_(std::move(walk)) { module_add_use(); }
  Result QueryInterface(const Guid& id, void** out) override {
    if (!out) return null_pointer;
    *out = id == iid_unknown || id == iid_enum_variant ? this : nullptr;
    if (!*out) return no_interface;
    AddRef();
    return ok;
  }
  std::uint32_t AddRef() override { return ++count_; }
  std::uint32_t Release() override {
    const std::uint32_t left = --count_;
    if (left == 0) {
      delete this;
      module_release_use();
    }
    return left;
  }
  Result Next(std::uint32_t count, ComVariant* out, std::uint32_t* fetched) override {
    if (!out && count) return null_pointer;
    std::uint32_t done = 0;
    try {
      Variant item;
      for (; done < count && walk_->next(item); ++done) out[done] = to_com(item);
    } catch (...) {
      return current_error_number();
    }
    if (fetched) *fetched = done;
    return done == count ? ok : no_more;
  }
  Result Skip(std::uint32_t count) override {
    Variant item;
    while (count > 0 && walk_->next(item)) --count;
    return count == 0 ? ok : no_more;
  }
  Result Reset() override {
    walk_->reset();
    return ok;
  }
  Result Clone(EnumVariant** out) override {
    if (!out) return null_pointer;
    *out = new EnumeratorFace(walk_->clone());
    (*out)->AddRef();
    return ok;
  }

 private:
  Ref<Enumerator> walk_;
  std::uint32_t count_ = 0;
};

}  // namespace

Unknown* face_of(const Ref<Object>& object) {
  Unknown* face = nullptr;
  if (const auto walk = ref_cast<Enumerator>(object)) {
    face = new EnumeratorFace(walk);
  } else if (const auto found = faces().find(object.get()); found != faces().end()) {
    face = static_cast<Dispatch*>(found->second);
  } else {
    const ClassTable* table = table_of(*object);
    if (!table) throw CallFailure(CallError::type_mismatch);
    face = static_cast<Dispatch*>(new Face(object, *table));
  }
  face->AddRef();
  return face;
}

Ref<Object> object_behind(Unknown& unknown) {
  void* native = nullptr;
  if (unknown.QueryInterface(iid_native_object, &native) != ok || !native)
    throw CallFailure(CallError::type_mismatch);
  return Ref<Object>(static_cast<Object*>(native));
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

}  // namespace qto::server::com
