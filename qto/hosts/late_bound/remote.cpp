#include "qto/hosts/late_bound/remote.hpp"

#include <vector>

#include "qto/automation/text.hpp"
#include "qto/com/errors.hpp"
#include "qto/com/memory.hpp"
#include "qto/com/type_info.hpp"
#include "qto/host/failure.hpp"

namespace qto::late_bound {
namespace {

constexpr std::uint32_t english = 0x409;
constexpr std::uint16_t call_method = 1, call_get = 2, call_put = 4, call_put_ref = 8;
constexpr std::int32_t type_mismatch = 13, no_object = 91;

/// The arguments of a call, the last one first, and what they own.
class Passed {
 public:
  Passed() = default;
  Passed(const Passed&) = delete;
  Passed& operator=(const Passed&) = delete;
  ~Passed() {
    for (com::ComVariant& value : values_) com::clear(value);
  }
  void add(const Given& given, com::ObjectMarshaler& marshaler) {
    values_.insert(values_.begin(), com::ComVariant());
    if (given) {
      values_.front() = com::to_com(*given, marshaler);
      return;
    }
    values_.front().type = com::vt_error;
    values_.front().i4 = static_cast<std::int32_t>(com::CallError::parameter_not_found);
  }
  com::CallParameters parameters(bool assigns) {
    return {values_.data(), assigns ? &com::id_assigned_value : nullptr,
            static_cast<std::uint32_t>(values_.size()), assigns ? 1u : 0u};
  }

 private:
  std::vector<com::ComVariant> values_;
};

std::string take_text(com::Text& text) {
  std::string read = com::read_text(text);
  com::free_text(text);
  text = nullptr;
  return read;
}

}  // namespace

struct Remote::Failure {
  std::int32_t number = 0;
  std::string text;
};

/// What a call answers, until it is released.
class Remote::Answer {
 public:
  Answer() = default;
  Answer(const Answer&) = delete;
  Answer& operator=(const Answer&) = delete;
  ~Answer() { com::clear(value); }
  com::ComVariant value;
};

std::optional<std::int32_t> MemberIds::id_of(com::Dispatch& object, HostMember member,
                                             com::Result& failed) {
  constexpr auto unknown_name = static_cast<com::Result>(com::CallError::unknown_name);
  Known& known = known_[static_cast<std::size_t>(member)];
  if (known.found) return known.id;
  failed = unknown_name;
  if (known.missing) return std::nullopt;
  const std::u16string name = text::to_utf16(name_of(member));
  const char16_t* names[] = {name.c_str()};
  failed = object.GetIDsOfNames(com::Guid(), names, 1, english, &known.id);
  known.found = failed == com::ok;
  known.missing = failed == unknown_name;  // any other failure may pass
  return known.found ? std::optional(known.id) : std::nullopt;
}

bool Remote::invoke(HostMember member, std::uint16_t flags, com::ObjectMarshaler& marshaler,
                    GivenList arguments, Answer& answer, Failure& failure) const {
  if (!object_) {
    failure = {no_object, "The object was released"};
    return false;
  }
  com::Result result = com::ok;
  const auto id = ids_->id_of(*object_.get(), member, result);
  if (!id) {
    failure = {failure_number(result), "The object has no such member"};
    return false;
  }
  Passed passed;
  for (const Given& given : arguments) passed.add(given, marshaler);
  com::CallParameters parameters = passed.parameters(flags & (call_put | call_put_ref));
  com::ExceptionInfo told{};
  result = object_->Invoke(*id, com::Guid(), english, flags, &parameters,
                           flags & call_get ? &answer.value : nullptr, &told, nullptr);
  if (result >= 0) return true;
  if (told.deferred)  // the other side tells only who asks
    reinterpret_cast<com::Result(QTO_CALL*)(com::ExceptionInfo*)>(told.deferred)(&told);
  take_text(told.source);
  take_text(told.help_file);
  const bool exception = result == com::see_exception && (told.number != 0 || told.code != 0);
  failure.number = !exception         ? failure_number(result)
                   : told.number != 0 ? failure_number(told.number)
                                      : told.code;
  failure.text = take_text(told.description);
  return false;
}

void Remote::fail(HostMember member, const Failure& failure) const {
  const std::string call =
      (ids_ ? ids_->class_name() + "." : std::string()) + std::string(name_of(member));
  throw host::HostFailure(failure.number,
                          failure.text.empty() ? "The call of " + call + " failed" : failure.text,
                          call);
}

Variant Remote::get(HostMember member, com::ObjectMarshaler& marshaler, GivenList arguments) const {
  Answer answer;
  Failure failure;
  if (!invoke(member, call_method | call_get, marshaler, arguments, answer, failure))
    fail(member, failure);
  try {
    return com::from_com(answer.value, marshaler);
  } catch (const com::CallFailure&) {
    fail(member, {type_mismatch, "The answer is of a type that cannot be read"});
  }
}

std::optional<Variant> Remote::probe(HostMember member, com::ObjectMarshaler& marshaler,
                                     GivenList arguments) const {
  Answer answer;
  Failure failure;
  try {
    if (invoke(member, call_method | call_get, marshaler, arguments, answer, failure))
      return com::from_com(answer.value, marshaler);
  } catch (const com::CallFailure&) {
    // An answer that cannot be read is none.
  } catch (const host::HostFailure&) {
    // Nor is an object that fails while it is looked at.
  }
  return std::nullopt;
}

com::Holder<com::Dispatch> Remote::get_object(HostMember member, com::ObjectMarshaler& marshaler,
                                              GivenList arguments) const {
  Answer answer;
  Failure failure;
  if (!invoke(member, call_method | call_get, marshaler, arguments, answer, failure))
    fail(member, failure);
  com::Holder<com::Dispatch> object;
  const bool reference =
      answer.value.type == com::vt_dispatch || answer.value.type == com::vt_unknown;
  if (!reference || !answer.value.unknown) fail(member, {no_object, "The call answers no object"});
  void* found = nullptr;
  if (answer.value.unknown->QueryInterface(com::iid_dispatch, &found) != com::ok || !found)
    fail(member, {no_object, "The object takes no calls by name"});
  return com::Holder<com::Dispatch>(static_cast<com::Dispatch*>(found));
}

void Remote::put(HostMember member, com::ObjectMarshaler& marshaler, const Variant& value) const {
  Answer none;
  Failure failure;
  if (!invoke(member, call_put, marshaler, {Given(value)}, none, failure)) fail(member, failure);
}

bool Remote::has(HostMember member) const {
  com::Result ignored = com::ok;
  return object_ && ids_->id_of(*object_.get(), member, ignored).has_value();
}

std::string class_of(com::Dispatch& object) {
  com::Holder<com::TypeInfo> type;
  if (object.GetTypeInfo(0, english, type.put()) != com::ok || !type) return "";
  com::Text name = nullptr;
  if (type->GetDocumentation(com::id_of_type, &name, nullptr, nullptr, nullptr) != com::ok)
    return "";
  std::string read = take_text(name);
  if (read.starts_with('_')) read.erase(0, 1);
  return read;
}

std::int32_t failure_number(com::Result result) noexcept {
  constexpr std::uint32_t run_time_error = 0x800A;
  const auto bits = static_cast<std::uint32_t>(result);
  const bool small = bits >> 16 == run_time_error && (bits & 0xFFFF) != 0;
  return small ? static_cast<std::int32_t>(bits & 0xFFFF) : result;
}

}  // namespace qto::late_bound
