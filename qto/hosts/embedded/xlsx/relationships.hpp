#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {

struct Relationship {
  std::string id;
  /// The last segment of the type, such as "worksheet": it is the same in every vocabulary.
  std::string type;
  /// As written.
  std::string target;
  /// The part that an internal target resolves to.
  std::string part;
  bool external = false;
};

/// What a part refers to. A part without relationships has none.
class Relationships {
 public:
  Relationships() = default;
  /// The relationships of the part named; "" for those of the package itself.
  Relationships(Package& package, const std::string& owner);

  const Relationship* by_id(std::string_view id) const;
  /// The first of that type, or null.
  const Relationship* of_type(std::string_view type) const;
  const std::vector<Relationship>& all() const noexcept { return all_; }

 private:
  std::vector<Relationship> all_;
  std::unordered_map<std::string, std::size_t> by_id_;
};

}  // namespace qto::embedded
