#pragma once

#include <cstdint>
#include <span>

#include "qto/automation/variant.hpp"
#include "qto/com/com.hpp"
#include "qto/com/conversion.hpp"
#include "qto/server/tables/table.hpp"

/// Early-bound calls: the functions behind an interface's places, made from the same members as
/// the late-bound ones.
namespace qto::server {

class CallableWrapper;

/// What a client's pointer to a default interface points at: as in every such object, first the
/// function table.
struct Dual {
  const void* functions;
  CallableWrapper* wrapper;
};

/// How a type lies in the call of a function at a place.
template <Shape>
struct RawShape;
template <>
struct RawShape<Shape::boolean> {
  using Raw = std::int16_t;
  static constexpr VariantType variant = vt_bool;
};
template <>
struct RawShape<Shape::number> {
  using Raw = std::int32_t;
  static constexpr VariantType variant = vt_i4;
};
template <>
struct RawShape<Shape::enumeration> : RawShape<Shape::number> {};
template <>
struct RawShape<Shape::text> {
  using Raw = Text;
  static constexpr VariantType variant = vt_text;
};
template <>
struct RawShape<Shape::variant> {
  using Raw = ComVariant;
  static constexpr VariantType variant = vt_variant;
};
template <>
struct RawShape<Shape::object> {
  using Raw = Unknown*;
  static constexpr VariantType variant = vt_dispatch;
};

/// A member as a call by place sees it.
struct PlaceCall {
  Variant (*call)(Object&, std::span<Variant>);
  std::span<const Type> types;
  std::uint32_t optional;  ///< one bit for each argument that may be left out
  std::uint32_t answered;  ///< one bit for each argument that the member may change
};
/// Calls with what lies on the stack; arguments by reference are answered, and the result, of the
/// type vt_empty when there is none, is put where the client wants it.
Result call_place(Dual& self, const PlaceCall& member, std::span<ComVariant> given,
                  VariantType result_type, void* result) noexcept;

/// The function table of a class's default interface: the seven functions of Dispatch, then one for
/// each member in the order of the table. It lives as long as the module.
const void* function_table(const ClassTable& table);

}  // namespace qto::server
