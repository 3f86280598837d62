#include "tests/server/module_client.hpp"

#include <algorithm>
#include <vector>

#include "qto/automation/text.hpp"
#include "qto/com/values.hpp"
#include "qto/server/calls/dispatch.hpp"

namespace qto::server {

using namespace com;

Bstr::Bstr(std::u16string_view text) : text_(make_text(text::from_utf16(text))) {}
Bstr::~Bstr() { free_text(text_); }
ComVariant Bstr::variant() const {
  ComVariant out;
  out.type = vt_text;
  out.text = text_;
  return out;
}

ComVariant of(std::int32_t value) {
  ComVariant out;
  out.type = vt_i4;
  out.i4 = value;
  return out;
}

ComVariant of(Dispatch* object) {
  ComVariant out;
  out.type = vt_dispatch;
  out.dispatch = object;
  return out;
}

std::int32_t call(Dispatch* object, const char16_t* name, std::uint16_t flags,
                  std::initializer_list<ComVariant> arguments, ComVariant* result,
                  std::uint32_t* bad_argument) {
  std::int32_t id = 0;
  const Result found = object->GetIDsOfNames(Guid(), &name, 1, 0x409, &id);
  if (found != ok) return found;
  std::vector<ComVariant> values(arguments);
  std::ranges::reverse(values);
  const bool assigns = flags & (call_put | call_put_ref);
  CallParameters parameters{values.data(), assigns ? &id_assigned_value : nullptr,
                            static_cast<std::uint32_t>(values.size()), assigns ? 1u : 0u};
  return object->Invoke(id, Guid(), 0x409, flags, &parameters, result, nullptr, bad_argument);
}

Dispatch* object_of(Dispatch* object, const char16_t* name,
                    std::initializer_list<ComVariant> arguments) {
  ComVariant result;
  const std::int32_t failed = call(object, name, call_get | call_method, arguments, &result);
  return failed == ok && result.type == vt_dispatch ? result.dispatch : nullptr;
}

}  // namespace qto::server
