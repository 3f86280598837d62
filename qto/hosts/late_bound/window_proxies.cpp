#include "qto/hosts/late_bound/window_proxies.hpp"

namespace qto::late_bound {
namespace {

std::optional<double> real_number(const Variant& value) {
  if (const auto* number = value.get_if<double>()) return *number;
  if (const auto* whole = value.get_if<std::int32_t>()) return *whole;
  return std::nullopt;
}

}  // namespace

std::optional<double> WorksheetFunctionProxy::Match(const Variant& lookup_value,
                                                    const Ref<host::Range>& lookup_range,
                                                    std::optional<double> match_type) {
  const auto place = match_type
                         ? probe(HostMember::Match,
                                 {Given(lookup_value), Variant(lookup_range), Variant(*match_type)})
                         : probe(HostMember::Match, {Given(lookup_value), Variant(lookup_range)});
  return place ? real_number(*place) : std::nullopt;
}

double WorksheetFunctionProxy::CountIf(const Ref<host::Range>& range, const Variant& criteria) {
  const auto count = real_number(get(HostMember::CountIf, {Variant(range), Given(criteria)}));
  if (!count) fail_type(HostMember::CountIf);
  return *count;
}

}  // namespace qto::late_bound
