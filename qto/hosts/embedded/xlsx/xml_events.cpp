#include "qto/hosts/embedded/xlsx/xml_events.hpp"

#include "qto/hosts/embedded/xlsx/limits.hpp"

namespace qto::embedded {

void XmlEvents::start(std::string_view name, const char* const* attributes) {
  if (++depth_ > limits::element_depth) throw XmlFault("elements are nested too deeply");
  names_.enter(attributes, depth_);
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
