#include "qto/hosts/embedded/xlsx/xml_attributes.hpp"

#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {

const char* Attributes::find(std::string_view name) const noexcept {
  for (const char* const* entry = list_; *entry; entry += 2)
    if (name == *entry) return entry[1];
  return nullptr;
}

std::string_view Attributes::text(std::string_view name) const noexcept {
  const char* value = find(name);
  return value ? value : std::string_view();
}

std::optional<std::int64_t> Attributes::whole(std::string_view name) const noexcept {
  return whole_number(text(name));
}

double Attributes::number_or(std::string_view name, double fallback) const noexcept {
  return real_number(text(name)).value_or(fallback);
}

bool Attributes::flag(std::string_view name, bool fallback) const noexcept {
  const char* value = find(name);
  return value ? xml_boolean(value) : fallback;
}

std::string_view Attributes::relationship(std::string_view name) const noexcept {
  for (const char* const* entry = list_; *entry; entry += 2) {
    std::string_view local = *entry;
    if (local.find(':') != std::string_view::npos &&
        names_.resolve(local) == Space::relationships && local == name)
      return entry[1];
  }
  return {};
}

}  // namespace qto::embedded
