#include "qto/hosts/embedded/xlsx/xml_events.hpp"

#include <array>
#include <utility>

#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {
namespace {

constexpr std::array<std::pair<std::string_view, Space>, 11> vocabularies{{
    {"http://schemas.openxmlformats.org/spreadsheetml/2006/main", Space::main},
    {"http://purl.oclc.org/ooxml/spreadsheetml/main", Space::main},
    {"http://schemas.openxmlformats.org/officeDocument/2006/relationships", Space::relationships},
    {"http://purl.oclc.org/ooxml/officeDocument/relationships", Space::relationships},
    {"http://schemas.openxmlformats.org/package/2006/relationships", Space::package},
    {"http://schemas.openxmlformats.org/drawingml/2006/chart", Space::chart},
    {"http://purl.oclc.org/ooxml/drawingml/chart", Space::chart},
    {"http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing", Space::sheet_drawing},
    {"http://purl.oclc.org/ooxml/drawingml/spreadsheetDrawing", Space::sheet_drawing},
    {"http://schemas.openxmlformats.org/markup-compatibility/2006", Space::compatibility},
    {"", Space::none},
}};

Space space_of(std::string_view uri) {
  for (const auto& [known, space] : vocabularies)
    if (known == uri) return space;
  return Space::other;
}

}  // namespace

std::size_t XmlNames::enter(const char* const* attributes, int depth) {
  std::size_t count = 0;
  for (; *attributes; attributes += 2) {
    ++count;
    if (**attributes != 'x') continue;
    std::string_view name = *attributes;
    if (!name.starts_with("xmlns")) continue;
    name.remove_prefix(5);
    if (!name.empty() && name.front() != ':') continue;
    if (!name.empty()) name.remove_prefix(1);
    const Space space = space_of(attributes[1]);
    bindings_.push_back({std::string(name), space, depth});
    if (name.empty()) default_ = space;
  }
  return count;
}

void XmlNames::drop() {
  const bool was_default = bindings_.back().prefix.empty();
  bindings_.pop_back();
  if (was_default) default_ = of_prefix("");
}

Space XmlNames::of_prefix(std::string_view prefix) const {
  for (std::size_t i = bindings_.size(); i-- > 0;)
    if (bindings_[i].prefix == prefix) return bindings_[i].space;
  return Space::none;
}

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

void XmlEvents::start(std::string_view name, const char* const* attributes) {
  if (static_cast<std::uint64_t>(++depth_) > limits_.xml_depth)
    throw XmlFault(
        "elements are nested too deeply (xml-depth=" + std::to_string(limits_.xml_depth) + ")",
        OpenFailureKind::too_large);
  if (names_.enter(attributes, depth_) > limits_.xml_attributes)
    throw XmlFault("an element has too many attributes (xml-attributes=" +
                       std::to_string(limits_.xml_attributes) + ")",
                   OpenFailureKind::too_large);
  if (skipping_ != 0) return;
  const Space space = names_.resolve(name);
  if (space == Space::compatibility && name == "Choice") {
    skipping_ = depth_;
    return;
  }
  handler_.on_start(space, name, Attributes(attributes, names_));
}

void XmlEvents::end(std::string_view name) {
  if (skipping_ == 0) {
    const Space space = names_.resolve(name);
    handler_.on_end(space, name);
  } else if (skipping_ == depth_) {
    skipping_ = 0;
  }
  names_.leave(depth_--);
}

}  // namespace qto::embedded
