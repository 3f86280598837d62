#include "qto/server/wrappers/function_table.hpp"

#include <cstring>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "qto/com/conversion.hpp"
#include "qto/com/errors.hpp"
#include "qto/server/reports/report_log.hpp"
#include "qto/server/tables/table.hpp"
#include "qto/server/wrappers/callable_wrapper.hpp"
#include "qto/server/wrappers/marshaling.hpp"

namespace qto::server {
namespace {

bool is_by_reference(const ComVariant& given) { return given.type & vt_by_ref; }

Variant value_of(const ComVariant& given, const Type& type, bool optional, std::uint32_t index) {
  Variant value;
  if (is_left_out(given)) {
    if (!optional && type.shape != Shape::variant)
      throw CallFailure(CallError::parameter_not_optional, index);
    return value;
  }
  value = argument_value(given, index);
  const bool absent = optional && (value.is_empty() || (value.is_text() && value.text().empty()));
  if (absent) return Variant();
  convert_or_throw(value, type, index);
  return value;
}

std::string_view name_of(const PlaceCall& call, const ClassTable& table) {
  for (const Member& member : table.members)
    if (member.call == call.call) return member.name;
  return "";
}

void put_result(VariantType type, void* place, const Variant& answer) {
  if (type == vt_empty) return;
  const ComVariant result = to_com(answer);
  if (type == vt_variant)
    std::memcpy(place, &result, sizeof result);
  else
    std::memcpy(place, &result.bits, size_of_value(type));
}

Result run(CallableWrapper& wrapper, const PlaceCall& member, std::span<ComVariant> given,
           VariantType result_type, void* result) {
  if (result_type != vt_empty && !result) return null_pointer;
  // The copy counts as a reference: a handler may release the last other one meanwhile.
  const Ref<Object> keep = wrapper.object();  // NOLINT(performance-unnecessary-copy-initialization)
  if (!keep) return disconnected;
  std::vector<Variant> values(given.size());
  for (std::uint32_t i = 0; i < given.size(); ++i) {
    if (is_by_reference(given[i]) && !given[i].pointer) return null_pointer;
    values[i] = value_of(given[i], member.types[i], member.optional >> i & 1, i);
  }
  const ClientCall call;
  const Variant answer = member.call(*keep, values);
  call.check(wrapper.table().name, name_of(member, wrapper.table()));
  for (std::size_t i = 0; i < given.size(); ++i)
    if (member.answered >> i & 1) write_back(given[i], values[i]);
  put_result(result_type, result, answer);
  return ok;
}

std::vector<const void*> make_table(const ClassTable& table) {
  std::vector<const void*> functions = CallableWrapper::dispatch_functions();
  for (const Member& member : table.members) functions.push_back(member.function());
  return functions;
}

}  // namespace

Result call_place(Dual& self, const PlaceCall& member, std::span<ComVariant> given,
                  VariantType result_type, void* result) noexcept {
  return guarded([&] { return run(*self.wrapper, member, given, result_type, result); });
}

const void* function_table(const ClassTable& table) {
  static std::mutex guard;
  static std::unordered_map<const ClassTable*, std::vector<const void*>> made;
  const std::lock_guard lock(guard);
  auto& functions = made[&table];
  if (functions.empty()) functions = make_table(table);
  return &functions[CallableWrapper::before_functions];
}

}  // namespace qto::server
