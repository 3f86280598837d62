#pragma once

#include <concepts>
#include <optional>
#include <span>
#include <utility>
#include <variant>
#include <vector>

#include "qto/automation/variant.hpp"
#include "qto/hosts/embedded/evaluate/environment.hpp"

namespace qto::embedded {

/// The areas of a reference that is more than one block: a union, or one block on a span of sheets.
class AreaList : public RefCounted {
 public:
  AreaList(std::vector<Area> list, bool over_sheets) : areas(std::move(list)), span(over_sheets) {}
  const std::vector<Area> areas;
  const bool span;
};

/// What an expression evaluates to: a value (an array is one), a reference, or nothing at all where
/// an argument was left out.
class Operand {
 public:
  /// An argument that was left out.
  Operand() noexcept = default;
  template <class T>
  requires(std::constructible_from<Variant, T&&> && !std::same_as<std::remove_cvref_t<T>, Operand>)
      Operand(T&& value)
      : data_(std::in_place_type<Variant>, std::forward<T>(value)) {}
  Operand(const Area& area) noexcept : data_(area) {}
  /// A reference to all the areas; #REF! for none of them.
  static Operand of_areas(std::vector<Area> areas, bool over_sheets = false);

  bool is_missing() const noexcept { return data_.index() == 0; }
  bool is_reference() const noexcept { return data_.index() >= 2; }
  bool is_array() const noexcept { return value() && value()->is_array(); }
  /// The value, arrays included; null for references and left-out arguments.
  const Variant* value() const noexcept { return std::get_if<Variant>(&data_); }
  /// The one block of a reference; null for anything else.
  const Area* area() const noexcept { return std::get_if<Area>(&data_); }
  /// All blocks of a reference, none for anything else.
  std::span<const Area> areas() const noexcept;
  /// One block on several sheets.
  bool is_span() const noexcept;
  /// The error when this is one.
  const ErrorValue* error() const noexcept {
    return value() ? value()->get_if<ErrorValue>() : nullptr;
  }

 private:
  std::variant<std::monostate, Variant, Area, Ref<const AreaList>> data_;
};

}  // namespace qto::embedded
