#pragma once

#include <vector>

#include "qto/com/type_info.hpp"
#include "qto/server/events/connection_point.hpp"
#include "qto/server/tables/enumerator.hpp"
#include "qto/server/tables/table.hpp"
#include "qto/server/wrappers/function_table.hpp"

namespace qto::server {

/// What a client holds of one object: its default interface, the description of its class, and its
/// connection points. It lasts until the client's last reference goes; then the object is let go,
/// and calls through a pointer that was kept too long are refused for as long as the place in
/// memory is not needed.
class CallableWrapper {
 public:
  CallableWrapper(Ref<Object> object, const ClassTable& table);
  CallableWrapper(const CallableWrapper&) = delete;
  CallableWrapper& operator=(const CallableWrapper&) = delete;

  /// The wrapper of an object, made when there is none; without a reference for the caller.
  static CallableWrapper& of(const Ref<Object>& object);
  /// What stands in a function table before a class's own members; the table proper begins at
  /// `before_functions`.
  static std::vector<const void*> dispatch_functions();
  static constexpr std::size_t before_functions = 2;

  /// The interface that stands for the object's identity.
  Dispatch* dispatch() noexcept { return reinterpret_cast<Dispatch*>(&dual_); }
  /// Nothing once the client's last reference has gone.
  const Ref<Object>& object() const noexcept { return object_; }
  const ClassTable& table() const noexcept { return table_; }

  Result query(const Guid& id, void** out) noexcept;
  std::uint32_t add_ref() noexcept;
  std::uint32_t release() noexcept;
  Result invoke(std::int32_t id, std::uint16_t flags, CallParameters* parameters,
                ComVariant* result, ExceptionInfo* exception, std::uint32_t* bad_argument) noexcept;

 private:
  class ClassInfo final : public Delegating<ProvideClassInfo2> {
   public:
    ClassInfo(Unknown& owner, const ClassTable& table) : Delegating(owner), table_(table) {}
    Result QTO_CALL GetClassInfo(TypeInfo** out) override;
    Result QTO_CALL GetGUID(std::uint32_t kind, Guid* out) override;

   private:
    const ClassTable& table_;
  };
  void retire() noexcept;

  Dual dual_;
  Ref<Object> object_;
  const ClassTable& table_;
  std::uint32_t count_ = 0;
  ClassInfo class_info_;
  EventContainer events_;
};

/// A collection's walk as clients hold it; the reference is the caller's.
EnumVariant* wrap_enumerator(Ref<Enumerator> walk);

/// Gives up the wrappers of released objects. Only when no object is in use and the library may be
/// unloaded.
void forget_wrappers() noexcept;

}  // namespace qto::server
