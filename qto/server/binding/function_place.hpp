#pragma once

#include <cstring>

#include "qto/server/binding/crossing.hpp"
#include "qto/server/wrappers/function_table.hpp"

/// The functions at the places of an interface, made from the same members as late-bound calls.
namespace qto::server {

template <class>
inline constexpr bool is_optional = false;
template <class T>
inline constexpr bool is_optional<std::optional<T>> = true;

/// What a function at a place takes of an argument. A value that may be left out is a variant there
/// (a text: null or empty).
template <class A>
inline constexpr Shape raw_shape =
    is_optional<std::remove_cvref_t<A>>&& CrossingOf<void, A>::type.shape != Shape::text
        ? Shape::variant
        : CrossingOf<void, A>::type.shape;
template <class A>
using RawOf = typename RawShape<raw_shape<A>>::Raw;
template <class A, bool by_reference>
using RawArgument = std::conditional_t<by_reference, RawOf<A>*, RawOf<A>>;

template <class A, bool by_reference>
com::ComVariant raw_variant(RawArgument<A, by_reference> raw) {
  constexpr com::VariantType type = RawShape<raw_shape<A>>::variant;
  if constexpr (!by_reference && type == com::vt_variant) {
    return raw;
  } else {
    com::ComVariant out;
    out.type = by_reference ? type | com::vt_by_ref : type;
    // What is passed is copied as it is, a pointer as a pointer.
    std::memcpy(&out.bits, &raw, sizeof raw);  // NOLINT(bugprone-sizeof-expression)
    return out;
  }
}

/// The function at a member's place in the table. `call` is the member's late-bound form.
template <class Surface, auto call, bool first_by_reference, class R, class Indexes, class... A>
struct Place;
template <class Surface, auto call, bool first_by_reference, class R, std::size_t... I, class... A>
struct Place<Surface, call, first_by_reference, R, std::index_sequence<I...>, A...> {
  template <std::size_t i, class T>
  static constexpr bool by_reference = is_answer<T> || (first_by_reference && i == 0);
  static constexpr std::uint32_t optional =
      ((std::uint32_t{is_optional<std::remove_cvref_t<A>>} << I) | ... | 0u);
  static constexpr std::uint32_t answered = ((std::uint32_t{is_answer<A>} << I) | ... | 0u);

  static com::Result run(Dual* self, com::VariantType result_type, void* result,
                         RawArgument<A, by_reference<I, A>>... raw) {
    std::array<com::ComVariant, sizeof...(A)> given{raw_variant<A, by_reference<I, A>>(raw)...};
    return call_place(*self, {call, types_of<Surface, A...>, optional, answered}, given,
                      result_type, result);
  }
  static com::Result QTO_CALL without_result(Dual* self,
                                             RawArgument<A, by_reference<I, A>>... raw) {
    return run(self, com::vt_empty, nullptr, raw...);
  }
  static com::Result QTO_CALL with_result(Dual* self, RawArgument<A, by_reference<I, A>>... raw,
                                          void* result) {
    return run(self, RawShape<raw_shape<R>>::variant, result, raw...);
  }
  static const void* address() {
    if constexpr (std::is_void_v<R>)
      return reinterpret_cast<const void*>(&without_result);
    else
      return reinterpret_cast<const void*>(&with_result);
  }
};

}  // namespace qto::server
