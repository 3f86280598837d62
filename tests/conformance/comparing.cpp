#include "tests/conformance/comparing.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace qto::embedded::conformance {

bool same_value(const ValueView& got, const ValueView& want) {
  if (got.is_number() && want.is_number()) {
    const double size = std::max(std::fabs(got.number()), std::fabs(want.number()));
    return std::fabs(got.number() - want.number()) <= std::max(size * 1e-9, 1e-12);
  }
  if (got.is_empty() && want.is_text()) return want.text().empty();
  if (got.type() != want.type()) return false;
  if (got.is_text()) return got.text() == want.text();
  if (got.is_boolean()) return got.boolean() == want.boolean();
  return !got.is_error() || got.error() == want.error();
}

std::string shown(const ValueView& value) {
  if (value.is_number()) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.17g", value.number());
    return text.data();
  }
  if (value.is_text()) return '"' + std::string(value.text()) + '"';
  if (value.is_boolean()) return value.boolean() ? "TRUE" : "FALSE";
  return value.is_error() ? std::string(error_text(value.error())) : "(empty)";
}

std::set<std::string> functions_of(const formula::SyntaxTree& tree) {
  std::set<std::string> names;
  for (const formula::Node& node : tree.nodes)
    if (node.kind == formula::NodeKind::call) names.insert(tree.texts[node.payload]);
  if (names.empty()) names.insert("(operators)");
  return names;
}

bool depends_on_time_or_chance(const std::set<std::string>& functions) {
  constexpr std::array names{"NOW", "TODAY", "RAND", "RANDBETWEEN", "RANDARRAY"};
  return std::any_of(names.begin(), names.end(),
                     [&](const char* name) { return functions.contains(name); });
}

}  // namespace qto::embedded::conformance
