#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "qto/hosts/embedded/xlsx/xml_names.hpp"

namespace qto::embedded {

/// The attributes of an element, valid while its start is being handled.
class Attributes {
 public:
  Attributes(const char* const* list, const XmlNames& names) : list_(list), names_(names) {}

  /// The value of an attribute without prefix, or null.
  const char* find(std::string_view name) const noexcept;
  /// The value, "" when there is none.
  std::string_view text(std::string_view name) const noexcept;
  /// Nothing when there is no such attribute or it is no whole number.
  std::optional<std::int64_t> whole(std::string_view name) const noexcept;
  std::int64_t whole_or(std::string_view name, std::int64_t fallback) const noexcept {
    return whole(name).value_or(fallback);
  }
  double number_or(std::string_view name, double fallback) const noexcept;
  bool flag(std::string_view name, bool fallback = false) const noexcept;
  /// The relationship that an attribute such as r:id names; "" when there is none.
  std::string_view relationship(std::string_view name = "id") const noexcept;
  /// Names and values in turn, ended by a null.
  const char* const* list() const noexcept { return list_; }

 private:
  const char* const* list_;
  const XmlNames& names_;
};

}  // namespace qto::embedded
