#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qto::embedded {

/// The vocabularies that matter, transitional and strict forms alike.
enum class Space : std::uint8_t {
  none,
  other,
  main,           ///< SpreadsheetML
  relationships,  ///< attributes that name a relationship
  package,        ///< relationship parts
  chart,
  sheet_drawing,
  compatibility,  ///< markup compatibility and extensibility
};

/// The namespace declarations in force while a part is read.
class XmlNames {
 public:
  /// Takes the declarations among an element's attributes (name, value, ..., null).
  void enter(const char* const* attributes, int depth);
  /// Drops what the element of that depth declared.
  void leave(int depth) {
    while (!bindings_.empty() && bindings_.back().depth == depth) drop();
  }
  /// Splits a prefix off `name` and tells its vocabulary; without prefix it is the default one.
  Space resolve(std::string_view& name) const {
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos) return default_;
    const Space space = of_prefix(name.substr(0, colon));
    name.remove_prefix(colon + 1);
    return space;
  }
  Space of_prefix(std::string_view prefix) const;

 private:
  struct Binding {
    std::string prefix;
    Space space;
    int depth;
  };
  void drop();

  std::vector<Binding> bindings_;
  Space default_ = Space::none;
};

}  // namespace qto::embedded
