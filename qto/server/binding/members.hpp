#pragma once

#include <functional>

#include "qto/automation/event.hpp"
#include "qto/server/binding/function_place.hpp"
#include "qto/server/tables/enumerator.hpp"

/// Makes table entries from C++ members. Whatever does not fit (a wrong number of argument names, a
/// type that cannot cross, a reference that the names do not show) does not compile.
namespace qto::server {

/// The pieces of a C++ member function, or of a free function whose first argument is the object.
template <class Surface, class Class, class R, class... A>
struct Signature {
  using Result = R;
  static constexpr std::size_t arity = sizeof...(A);
  static constexpr const auto& types = types_of<Surface, A...>;
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
               ? &Place<Surface, &Signature::template call<F>, (arity > 0), R, Indexes,
                        A...>::address
               : &Place<Surface, &Signature::template call<F>, false, R, Indexes, A...>::address;
  }
};
template <class Surface, class F>
struct SignatureOf;
template <class Surface, class C, class R, class... A>
struct SignatureOf<Surface, R (C::*)(A...)> : Signature<Surface, C, R, A...> {};
template <class Surface, class C, class R, class... A>
struct SignatureOf<Surface, R (C::*)(A...) const> : Signature<Surface, C, R, A...> {};
template <class Surface, class C, class R, class... A>
struct SignatureOf<Surface, R (C::*)(A...) noexcept> : Signature<Surface, C, R, A...> {};
template <class Surface, class C, class R, class... A>
struct SignatureOf<Surface, R (C::*)(A...) const noexcept> : Signature<Surface, C, R, A...> {};
template <class Surface, class C, class R, class... A>
struct SignatureOf<Surface, R (*)(C&, A...)> : Signature<Surface, C, R, A...> {};

template <class Surface, class R>
constexpr Type result_type() {
  if constexpr (std::is_void_v<R>)
    return {};
  else
    return CrossingOf<Surface, R>::type;
}

/// Makes the entry of a member. The surfaces name these (get, put, method, …) for their tables.
template <class Surface, Kind K, auto F>
struct Entry {
  using S = SignatureOf<Surface, decltype(F)>;
  consteval Member operator()(std::int32_t id, std::string_view name,
                              std::string_view arguments = K == Kind::put || K == Kind::put_ref
                                                               ? "Value"
                                                               : "") const {
    if (count_arguments(arguments) != S::arity) throw "the names do not fit the arguments";
    if (!S::marks_fit(arguments)) throw "an answered argument is not marked with &";
    if (!S::optionals_fit(arguments))
      throw "an optional argument needs std::optional, text or Variant";
    return {K,
            id,
            name,
            arguments,
            result_type<Surface, typename S::Result>(),
            S::types,
            S::template call<F>,
            S::template place<F>(S::first_by_reference(arguments))};
  }
};

/// Takes what a sink answers; an object of another type than the event's leaves the preset.
template <class Surface, class A>
void take_answer(A& argument, const Variant& answer) {
  try {
    argument = CrossingOf<Surface, A>::take(answer);
  } catch (const CallFailure&) {
    // the preset stands
  }
}

/// The Event member behind an event of the table.
template <class Surface, class E>
struct EventOf;
template <class Surface, class C, class... A>
struct EventOf<Surface, Event<A...> C::*> {
  static constexpr std::size_t arity = sizeof...(A);
  static constexpr const auto& types = types_of<Surface, A...>;
  static constexpr bool marks_fit(std::string_view names) {
    return Signature<Surface, C, void, A...>::marks_fit(names);
  }
  template <auto E>
  static int add(Object& object, std::int32_t id, const Ref<EventSink>& sink) {
    return (static_cast<C&>(object).*E).add([id, sink](A... arguments) {
      std::array<Variant, sizeof...(A)> values{CrossingOf<Surface, A>::give(arguments)...};
      sink->raise(id, values);
      [[maybe_unused]] std::size_t i = 0;
      (
          [&] {
            if constexpr (is_answer<A>) take_answer<Surface>(arguments, values[i]);
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
template <class Surface, auto E>
struct EventEntry {
  using S = EventOf<Surface, decltype(E)>;
  consteval EventMember operator()(std::string_view name, std::string_view arguments = "") const {
    if (count_arguments(arguments) != S::arity) throw "the names do not fit the arguments";
    if (!S::marks_fit(arguments)) throw "an answered argument is not marked with &";
    return {name, arguments, S::types, S::template add<E>, S::template remove<E>};
  }
};

template <class T>
Ref<Object> create_object() {
  return make_ref<T>();
}

template <class T>
bool is_a(const Object& object) {
  return dynamic_cast<const T*>(&object);
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
