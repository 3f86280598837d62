#pragma once

#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "qto/automation/enumerations.hpp"
#include "qto/automation/event.hpp"
#include "qto/com/errors.hpp"
#include "qto/server/enumerator.hpp"
#include "qto/server/function_table.hpp"
#include "qto/server/table.hpp"

/// Makes table entries from C++ members. Whatever does not fit (a wrong number of argument names, a
/// type that cannot cross the boundary, a reference that the names do not show) does not compile.
namespace qto::server {

/// The name under which a class or enumeration crosses the boundary; specialised by the tables.
template <class T>
inline constexpr std::string_view boundary_name = "";
template <>
inline constexpr std::string_view boundary_name<qtoDrillType> = "qtoDrillType";
template <>
inline constexpr std::string_view boundary_name<qtoReasonNotOpened> = "qtoReasonNotOpened";
template <>
inline constexpr std::string_view boundary_name<qtoAddressType> = "qtoAddressType";
template <>
inline constexpr std::string_view boundary_name<qtoReasonNotSelect> = "qtoReasonNotSelect";
template <>
inline constexpr std::string_view boundary_name<qtoContainsConstant> = "qtoContainsConstant";

/// How a C++ type crosses the boundary. take() reads a value that has its final type already.
template <class T>
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
template <>
struct Crossing<bool> : PlainCrossing<Shape::boolean, bool> {};
template <>
struct Crossing<std::int32_t> : PlainCrossing<Shape::number, std::int32_t> {};
template <>
struct Crossing<std::string> {
  using Stored = std::string;
  static constexpr Type type{Shape::text, ""};
  static std::string take(const Variant& v) { return v.text(); }
  static Variant give(std::string_view text) { return Variant(text); }
};
template <>
struct Crossing<std::string_view> : Crossing<std::string> {};
template <>
struct Crossing<Variant> {
  using Stored = Variant;
  static constexpr Type type{Shape::variant, ""};
  static Variant take(const Variant& v) { return v; }
  static Variant give(const Variant& v) { return v; }
};
template <class E>
requires std::is_enum_v<E>
struct Crossing<E> {
  static_assert(!boundary_name<E>.empty(), "this enumeration has no name at the boundary");
  using Stored = E;
  static constexpr Type type{Shape::enumeration, boundary_name<E>};
  static E take(const Variant& v) { return static_cast<E>(Crossing<std::int32_t>::take(v)); }
  static Variant give(E value) { return Variant(static_cast<std::int32_t>(value)); }
};
template <class T>
struct Crossing<Ref<T>> {
  using Stored = Ref<T>;
  static constexpr Type type{Shape::object, boundary_name<T>};
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
template <class T>
struct Crossing<std::optional<T>> {
  using Stored = std::optional<T>;
  static constexpr Type type = Crossing<T>::type;
  static std::optional<T> take(const Variant& v) {
    return v.is_empty() ? std::nullopt : std::optional<T>(Crossing<T>::take(v));
  }
  static Variant give(const std::optional<T>& value) {
    return value ? Crossing<T>::give(*value) : Variant();
  }
};

template <class A>
using CrossingOf = Crossing<std::remove_cvref_t<A>>;
template <class A>
using StoredFor = typename CrossingOf<A>::Stored;
template <class A>
inline constexpr bool is_answer =
    std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>>;

template <class... A>
inline constexpr std::array<Type, sizeof...(A)> types_of{CrossingOf<A>::type...};

/// Takes one argument; a failure names its position.
template <class A>
StoredFor<A> take_argument(std::span<Variant> values, std::uint32_t position) {
  try {
    return CrossingOf<A>::take(values[position]);
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
    result = CrossingOf<R>::give(function(std::get<I>(stored)...));
  (
      [&] {
        if constexpr (is_answer<A>) values[I] = CrossingOf<A>::give(std::get<I>(stored));
      }(),
      ...);
  return result;
}

template <class>
inline constexpr bool is_optional = false;
template <class T>
inline constexpr bool is_optional<std::optional<T>> = true;

/// What a function at a place takes of an argument. A value that may be left out is a variant there
/// (a text: null or empty).
template <class A>
inline constexpr Shape raw_shape =
    is_optional<std::remove_cvref_t<A>>&& CrossingOf<A>::type.shape != Shape::text
        ? Shape::variant
        : CrossingOf<A>::type.shape;
template <class A>
using RawOf = typename com::RawShape<raw_shape<A>>::Raw;
template <class A, bool by_reference>
using RawArgument = std::conditional_t<by_reference, RawOf<A>*, RawOf<A>>;

template <class A, bool by_reference>
com::ComVariant raw_variant(RawArgument<A, by_reference> raw) {
  constexpr com::VariantType type = com::RawShape<raw_shape<A>>::variant;
  if constexpr (!by_reference && type == com::vt_variant) {
    return raw;
  } else {
    com::ComVariant out;
    out.type = by_reference ? type | com::vt_by_ref : type;
    std::memcpy(&out.bits, &raw, sizeof raw);
    return out;
  }
}

/// The function at a member's place in the table. `call` is the member's late-bound form.
template <auto call, bool first_by_reference, class R, class Indexes, class... A>
struct Place;
template <auto call, bool first_by_reference, class R, std::size_t... I, class... A>
struct Place<call, first_by_reference, R, std::index_sequence<I...>, A...> {
  template <std::size_t i, class T>
  static constexpr bool by_reference = is_answer<T> || (first_by_reference && i == 0);
  static constexpr std::uint32_t optional =
      ((std::uint32_t{is_optional<std::remove_cvref_t<A>>} << I) | ... | 0u);
  static constexpr std::uint32_t answered = ((std::uint32_t{is_answer<A>} << I) | ... | 0u);

  static com::Result run(com::Dual* self, com::VariantType result_type, void* result,
                         RawArgument<A, by_reference<I, A>>... raw) {
    std::array<com::ComVariant, sizeof...(A)> given{raw_variant<A, by_reference<I, A>>(raw)...};
    return com::call_place(*self, {call, types_of<A...>, optional, answered}, given, result_type,
                           result);
  }
  static com::Result QTO_CALL without_result(com::Dual* self,
                                             RawArgument<A, by_reference<I, A>>... raw) {
    return run(self, com::vt_empty, nullptr, raw...);
  }
  static com::Result QTO_CALL with_result(com::Dual* self,
                                          RawArgument<A, by_reference<I, A>>... raw, void* result) {
    return run(self, com::RawShape<raw_shape<R>>::variant, result, raw...);
  }
  static const void* address() {
    if constexpr (std::is_void_v<R>)
      return reinterpret_cast<const void*>(&without_result);
    else
      return reinterpret_cast<const void*>(&with_result);
  }
};

/// The pieces of a C++ member function, or of a free function whose first argument is the object.
template <class Class, class R, class... A>
struct Signature {
  using Result = R;
  static constexpr std::size_t arity = sizeof...(A);
  static constexpr const auto& types = types_of<A...>;
  template <auto F>
  static Variant call(Object& object, std::span<Variant> values) {
    auto& self = static_cast<Class&>(object);
    return call_with<R, A...>(
        [&self](StoredFor<A>&... arguments) -> R { return std::invoke(F, self, arguments...); },
        values, std::index_sequence_for<A...>());
  }
  /// A by-reference answer must be marked in the list of names.
  static constexpr bool marks_fit([[maybe_unused]] std::string_view names) {
    [[maybe_unused]] std::size_t i = 0;
    return ((argument_at(names, i++).by_reference || !is_answer<A>)&&...);
  }
  /// The first argument alone can be by reference without being answered.
  static constexpr bool first_by_reference(std::string_view names) {
    constexpr std::array<bool, arity> answers{is_answer<A>...};
    for (std::size_t i = 1; i < arity; ++i)
      if (argument_at(names, i).by_reference != answers[i])
        throw "only the first argument can be by reference without an answer";
    return arity > 0 && argument_at(names, 0).by_reference;
  }
  /// At a place, what may be left out must be a variant or a text.
  static constexpr bool optionals_fit([[maybe_unused]] std::string_view names) {
    [[maybe_unused]] std::size_t i = 0;
    return ((!argument_at(names, i++).optional || raw_shape<A> == Shape::variant ||
             raw_shape<A> == Shape::text) &&
            ...);
  }
  template <auto F>
  static constexpr auto place(bool by_reference) {
    using Indexes = std::index_sequence_for<A...>;
    return by_reference
               ? &Place<&Signature::template call<F>, (arity > 0), R, Indexes, A...>::address
               : &Place<&Signature::template call<F>, false, R, Indexes, A...>::address;
  }
};
template <class F>
struct SignatureOf;
template <class C, class R, class... A>
struct SignatureOf<R (C::*)(A...)> : Signature<C, R, A...> {};
template <class C, class R, class... A>
struct SignatureOf<R (C::*)(A...) const> : Signature<C, R, A...> {};
template <class C, class R, class... A>
struct SignatureOf<R (C::*)(A...) noexcept> : Signature<C, R, A...> {};
template <class C, class R, class... A>
struct SignatureOf<R (C::*)(A...) const noexcept> : Signature<C, R, A...> {};
template <class C, class R, class... A>
struct SignatureOf<R (*)(C&, A...)> : Signature<C, R, A...> {};

template <class R>
constexpr Type result_type() {
  if constexpr (std::is_void_v<R>)
    return {};
  else
    return CrossingOf<R>::type;
}

template <Kind K, auto F>
consteval Member entry(std::int32_t id, std::string_view name, std::string_view arguments) {
  using S = SignatureOf<decltype(F)>;
  if (count_arguments(arguments) != S::arity) throw "the names do not fit the arguments";
  if (!S::marks_fit(arguments)) throw "an answered argument is not marked with &";
  if (!S::optionals_fit(arguments))
    throw "an optional argument needs std::optional, text or Variant";
  return {K,
          id,
          name,
          arguments,
          result_type<typename S::Result>(),
          S::types,
          S::template call<F>,
          S::template place<F>(S::first_by_reference(arguments))};
}
template <auto F>
consteval Member get(std::int32_t id, std::string_view name, std::string_view arguments = "") {
  return entry<Kind::get, F>(id, name, arguments);
}
template <auto F>
consteval Member put(std::int32_t id, std::string_view name, std::string_view arguments = "Value") {
  return entry<Kind::put, F>(id, name, arguments);
}
template <auto F>
consteval Member put_ref(std::int32_t id, std::string_view name,
                         std::string_view arguments = "Value") {
  return entry<Kind::put_ref, F>(id, name, arguments);
}
template <auto F>
consteval Member method(std::int32_t id, std::string_view name, std::string_view arguments = "") {
  return entry<Kind::method, F>(id, name, arguments);
}
template <class Collection>
consteval Member new_enum() {
  return entry<Kind::enumerator, &enumerate<Collection>>(enumerator_id, "NewEnum", "");
}

/// The Event member behind an event of the table.
template <class E>
struct EventOf;
template <class C, class... A>
struct EventOf<Event<A...> C::*> {
  static constexpr std::size_t arity = sizeof...(A);
  static constexpr const auto& types = types_of<A...>;
  static constexpr bool marks_fit(std::string_view names) {
    return Signature<C, void, A...>::marks_fit(names);
  }
  template <auto E>
  static int add(Object& object, std::int32_t id, const Ref<EventSink>& sink) {
    return (static_cast<C&>(object).*E).add([id, sink](A... arguments) {
      std::array<Variant, sizeof...(A)> values{CrossingOf<A>::give(arguments)...};
      sink->raise(id, values);
      [[maybe_unused]] std::size_t i = 0;
      (
          [&] {
            if constexpr (is_answer<A>) arguments = CrossingOf<A>::take(values[i]);
            ++i;
          }(),
          ...);
    });
  }
  template <auto E>
  static void remove(Object& object, int token) {
    (static_cast<C&>(object).*E).remove(token);
  }
};
template <auto E>
consteval EventMember event(std::string_view name, std::string_view arguments = "") {
  using S = EventOf<decltype(E)>;
  if (count_arguments(arguments) != S::arity) throw "the names do not fit the arguments";
  if (!S::marks_fit(arguments)) throw "an answered argument is not marked with &";
  return {name, arguments, S::types, S::template add<E>, S::template remove<E>};
}

template <class T>
Ref<Object> create_object() {
  return make_ref<T>();
}

/// What every table must hold: accessors of one property share an identifier, members do not, and
/// getters, setters and methods of one name occur once.
consteval bool identifiers_fit(std::span<const Member> members) {
  for (std::size_t i = 0; i < members.size(); ++i)
    for (std::size_t j = 0; j < i; ++j) {
      const bool same_name = members[i].name == members[j].name;
      if (same_name != (members[i].id == members[j].id)) return false;
      if (same_name && members[i].kind == members[j].kind) return false;
    }
  return true;
}

}  // namespace qto::server
