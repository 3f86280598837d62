#pragma once

#include <vector>

#include "qto/com/type_info.hpp"
#include "qto/server/event_point.hpp"
#include "qto/server/function_table.hpp"
#include "qto/server/table.hpp"

namespace qto::server::com {

/// What a client holds of one object: its default interface, the description of its class, and its
/// connection points. It lasts until the client's last reference goes; then the object is let go,
/// and calls through a pointer that was kept too long are refused for as long as the place in
/// memory is not needed.
class Face {
 public:
  Face(Ref<Object> object, const ClassTable& table);
  Face(const Face&) = delete;
  Face& operator=(const Face&) = delete;

  /// The face of an object, made when there is none; without a reference for the caller.
  static Face& of(const Ref<Object>& object);
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
  class ClassInfo final : public Attached<ProvideClassInfo2> {
   public:
    ClassInfo(Unknown& owner, const ClassTable& table) : Attached(owner), table_(table) {}
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
  EventPoint events_;
};

}  // namespace qto::server::com
