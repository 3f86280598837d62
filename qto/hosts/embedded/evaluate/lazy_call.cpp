#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/evaluate/walker.hpp"

namespace qto::embedded {

LazyCall::LazyCall(Walker& walker, const formula::Node& node, bool array)
    : walker_(walker), node_(node), count_(node.child_count), array_(array) {}

Context& LazyCall::context() const noexcept { return walker_; }

formula::NodeIndex LazyCall::argument(int i) const noexcept {
  formula::NodeIndex child = node_.first_child;
  for (; i > 0; --i) child = walker_.tree().at(child).next;
  return child;
}

bool LazyCall::missing(int i) const noexcept {
  return i >= count_ || walker_.tree().at(argument(i)).kind == formula::NodeKind::missing;
}

Operand LazyCall::evaluate(int i) const { return walker_.evaluate(argument(i), array_); }

bool LazyCall::is_many(const Operand& operand) const noexcept {
  if (operand.is_array()) return true;
  return array_ && operand.area() && !operand.area()->rect.is_cell();
}

std::string_view LazyCall::name(int i) const noexcept {
  const formula::Node& node = walker_.tree().at(argument(i));
  if (node.kind != formula::NodeKind::name || node.qualifier != 0) return {};
  return walker_.tree().texts[node.payload];
}

Operand LazyCall::function_value() const {
  std::vector<std::string> parameters;
  for (int i = 0; i + 1 < count_; ++i) {
    parameters.emplace_back(name(i));
    if (parameters.back().empty()) return ErrorValue::value;
  }
  return walker_.function_value(std::move(parameters), argument(count_ - 1), array_);
}

void LazyCall::bind(std::string_view name, Operand value) { walker_.bind(name, std::move(value)); }

}  // namespace qto::embedded
