#include "qto/hosts/embedded/xlsx/relationships.hpp"

#include <algorithm>

#include "qto/hosts/embedded/xlsx/part_path.hpp"
#include "qto/hosts/embedded/xlsx/xml_reader.hpp"

namespace qto::embedded {
namespace {

class RelationshipHandler final : public XmlHandler {
 public:
  RelationshipHandler(const std::string& owner, std::vector<Relationship>& found)
      : owner_(owner), found_(found) {}

  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    if (space != Space::package || name != "Relationship") return;
    Relationship relationship;
    relationship.id = attributes.text("Id");
    const std::string_view type = attributes.text("Type");
    relationship.type = type.substr(type.find_last_of('/') + 1);
    relationship.target = attributes.text("Target");
    relationship.external = attributes.text("TargetMode") == "External";
    if (!relationship.external) relationship.part = resolve_part(owner_, relationship.target);
    found_.push_back(std::move(relationship));
  }

 private:
  const std::string& owner_;
  std::vector<Relationship>& found_;
};

}  // namespace

Relationships::Relationships(Package& package, const std::string& owner) {
  const Package::Part* part = package.find(relationships_part_of(owner));
  if (!part) return;
  RelationshipHandler handler(owner, all_);
  PartStream stream = package.open(*part);
  read_xml(stream, handler);
  for (std::size_t i = 0; i < all_.size(); ++i) by_id_.emplace(all_[i].id, i);
}

const Relationship* Relationships::by_id(std::string_view id) const {
  const auto found = by_id_.find(std::string(id));
  return found == by_id_.end() ? nullptr : &all_[found->second];
}

const Relationship* Relationships::of_type(std::string_view type) const {
  const auto found = std::find_if(all_.begin(), all_.end(),
                                  [type](const Relationship& r) { return r.type == type; });
  return found == all_.end() ? nullptr : &*found;
}

}  // namespace qto::embedded
