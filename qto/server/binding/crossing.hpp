#pragma once

#include <array>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "qto/automation/enumerations.hpp"
#include "qto/com/errors.hpp"
#include "qto/server/tables/table.hpp"

/// How C++ types cross the boundary. Whatever does not fit does not compile.
namespace qto::server {

/// The name under which a class or enumeration crosses the boundary. The surfaces of engine and
/// host, which are told apart by a type of their own, show different classes by name: what is a
/// Range to the one is any object to the other.
template <class Surface, class T>
inline constexpr std::string_view boundary_name = "";
template <class Surface>
inline constexpr std::string_view boundary_name<Surface, qtoDrillType> = "qtoDrillType";
template <class Surface>
inline constexpr std::string_view boundary_name<Surface, qtoReasonNotOpened> = "qtoReasonNotOpened";
template <class Surface>
inline constexpr std::string_view boundary_name<Surface, qtoAddressType> = "qtoAddressType";
template <class Surface>
inline constexpr std::string_view boundary_name<Surface, qtoReasonNotSelect> = "qtoReasonNotSelect";
template <class Surface>
inline constexpr std::string_view boundary_name<Surface, qtoContainsConstant> =
    "qtoContainsConstant";
template <class Surface>
inline constexpr std::string_view boundary_name<Surface, qtoReading> = "qtoReading";

/// How a C++ type crosses the boundary. take() reads a value that has its final type already.
template <class Surface, class T>
struct Crossing;

template <Shape S, class T>
struct PlainCrossing {
  using Stored = T;
  static constexpr Type type{S, ""};
  static T take(const Variant& v) {
    const T* value = v.get_if<T>();
    return value ? *value : T();
  }
  static Variant give(T value) { return Variant(std::move(value)); }
};
template <class Surface>
struct Crossing<Surface, bool> : PlainCrossing<Shape::boolean, bool> {};
template <class Surface>
struct Crossing<Surface, std::int32_t> : PlainCrossing<Shape::number, std::int32_t> {};
template <class Surface>
struct Crossing<Surface, std::string> {
  using Stored = std::string;
  static constexpr Type type{Shape::text, ""};
  static std::string take(const Variant& v) { return v.text(); }
  static Variant give(std::string_view text) { return Variant(text); }
};
template <class Surface>
struct Crossing<Surface, std::string_view> : Crossing<Surface, std::string> {};
template <class Surface>
struct Crossing<Surface, Variant> {
  using Stored = Variant;
  static constexpr Type type{Shape::variant, ""};
  static Variant take(const Variant& v) { return v; }
  static Variant give(const Variant& v) { return v; }
};
template <class Surface, class E>
requires std::is_enum_v<E>
struct Crossing<Surface, E> {
  static_assert(!boundary_name<Surface, E>.empty(), "this enumeration has no name at the boundary");
  using Stored = E;
  static constexpr Type type{Shape::enumeration, boundary_name<Surface, E>};
  static E take(const Variant& v) {
    return static_cast<E>(Crossing<Surface, std::int32_t>::take(v));
  }
  static Variant give(E value) { return Variant(static_cast<std::int32_t>(value)); }
};
template <class Surface, class T>
struct Crossing<Surface, Ref<T>> {
  using Stored = Ref<T>;
  static constexpr Type type{Shape::object, boundary_name<Surface, T>};
  static Ref<T> take(const Variant& v) {
    const Ref<Object> object = v.object();
    if constexpr (std::is_same_v<T, Object>) {
      return object;
    } else {
      Ref<T> wanted = ref_cast<T>(object);
      if (object && !wanted) throw CallFailure(CallError::type_mismatch);
      return wanted;
    }
  }
  static Variant give(const Ref<T>& object) { return Variant(Ref<Object>(object)); }
};
/// An argument that may be left out.
template <class Surface, class T>
struct Crossing<Surface, std::optional<T>> {
  using Stored = std::optional<T>;
  static constexpr Type type = Crossing<Surface, T>::type;
  static std::optional<T> take(const Variant& v) {
    return v.is_empty() ? std::nullopt : std::optional<T>(Crossing<Surface, T>::take(v));
  }
  static Variant give(const std::optional<T>& value) {
    return value ? Crossing<Surface, T>::give(*value) : Variant();
  }
};

template <class Surface, class A>
using CrossingOf = Crossing<Surface, std::remove_cvref_t<A>>;
template <class A>
using StoredFor = typename CrossingOf<void, A>::Stored;
template <class A>
inline constexpr bool is_answer =
    std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>>;

template <class Surface, class... A>
inline constexpr std::array<Type, sizeof...(A)> types_of{CrossingOf<Surface, A>::type...};

/// Takes one argument; a failure names its position.
template <class A>
StoredFor<A> take_argument(std::span<Variant> values, std::uint32_t position) {
  try {
    return CrossingOf<void, A>::take(values[position]);
  } catch (const CallFailure&) {
    throw CallFailure(CallError::type_mismatch, position);
  }
}

/// Calls with stored values; what the callee may change is written back.
template <class R, class... A, class Function, std::size_t... I>
Variant call_with(Function&& function, [[maybe_unused]] std::span<Variant> values,
                  std::index_sequence<I...>) {
  std::tuple<StoredFor<A>...> stored{take_argument<A>(values, static_cast<std::uint32_t>(I))...};
  Variant result;
  if constexpr (std::is_void_v<R>)
    function(std::get<I>(stored)...);
  else
    result = CrossingOf<void, R>::give(function(std::get<I>(stored)...));
  (
      [&] {
        if constexpr (is_answer<A>) values[I] = CrossingOf<void, A>::give(std::get<I>(stored));
      }(),
      ...);
  return result;
}

}  // namespace qto::server
