#include "qto/hosts/late_bound/session.hpp"

#include <algorithm>
#include <vector>

#include "qto/com/convert.hpp"
#include "qto/com/errors.hpp"
#include "qto/host/failure.hpp"
#include "qto/hosts/late_bound/make_proxy.hpp"

namespace qto::late_bound {
namespace {

std::vector<Session*>& sessions() {
  static std::vector<Session*> all;
  return all;
}

/// Passes no objects.
class ShutDoor final : public com::ObjectDoor {
 public:
  com::Unknown* show(const Ref<Object>&) override { return nullptr; }
  Ref<Object> take(com::Unknown&) override {
    throw server::CallFailure(server::CallError::type_mismatch);
  }
};

com::Holder<com::Dispatch> counted(com::Dispatch& object) {
  object.AddRef();
  return com::Holder<com::Dispatch>(&object);
}

com::Holder<com::Dispatch> dispatch_of(com::Unknown& unknown) {
  void* found = nullptr;
  if (unknown.QueryInterface(com::iid_dispatch, &found) != com::ok || !found)
    throw server::CallFailure(server::CallError::type_mismatch);
  return com::Holder<com::Dispatch>(static_cast<com::Dispatch*>(found));
}

/// The identity of the application that the object belongs to; its own when it tells none.
com::Holder<com::Unknown> application_of(com::Dispatch& object) {
  MemberIds ids("");
  ShutDoor door;
  try {
    const auto application = Remote(counted(object), ids).get_object(Member::Application, door);
    return identity_of(*application.get());
  } catch (const host::HostFailure&) {
    return identity_of(object);
  }
}

}  // namespace

com::Holder<com::Unknown> identity_of(com::Unknown& unknown) {
  void* found = nullptr;
  if (unknown.QueryInterface(com::iid_unknown, &found) != com::ok) return {};
  return com::Holder<com::Unknown>(static_cast<com::Unknown*>(found));
}

Ref<Session> Session::of(com::Dispatch& object) {
  const auto own = identity_of(object);
  for (Session* session : sessions())
    if (session->live_.contains(own.get())) return Ref<Session>(session);
  const auto application = application_of(object);
  for (Session* session : sessions())
    if (session->application_ == application.get()) return Ref<Session>(session);
  return make_ref<Session>(application.get());
}

Session::Session(com::Unknown* application) : application_(application) {
  if (application_) application_->AddRef();
  sessions().push_back(this);
}

Session::~Session() {
  std::erase(sessions(), this);
  if (application_) application_->Release();
}

MemberIds& Session::ids_of(std::string_view class_name) {
  const auto found = ids_.find(class_name);
  if (found != ids_.end()) return found->second;
  return ids_.try_emplace(std::string(class_name), std::string(class_name)).first->second;
}

com::Unknown* Session::show(const Ref<Object>& object) {
  if (auto* remote = dynamic_cast<com::RemoteObject*>(object.get()))
    return remote->remote_reference();
  throw server::CallFailure(server::CallError::type_mismatch);
}

Ref<Object> Session::take(com::Unknown& unknown) {
  if (const auto known = live_.find(identity_of(unknown).get()); known != live_.end())
    return Ref<Object>(known->second);
  auto object = dispatch_of(unknown);
  const std::string class_name = class_of(*object.get());
  return make_proxy(Ref<Session>(this), std::move(object), class_name);
}

Ref<Object> Session::take_as(com::Unknown& unknown, std::string_view class_name) {
  if (const auto known = live_.find(identity_of(unknown).get()); known != live_.end())
    return Ref<Object>(known->second);
  return make_proxy(Ref<Session>(this), dispatch_of(unknown), class_name);
}

std::uint64_t Session::stamp_of(std::uint64_t object, const std::string& names) {
  const auto [found, is_new] = stamps_.try_emplace({object, names}, 0);
  if (is_new) found->second = next_serial();
  return found->second;
}

std::uint64_t Session::next_serial() noexcept {
  // Hosts of the same process that count for themselves begin below.
  static std::uint64_t last = std::uint64_t{1} << 63;
  return ++last;
}

RemoteHandle::~RemoteHandle() {
  if (!identity_) return;
  const auto found = session_->live_.find(identity_.get());
  if (found != session_->live_.end() && found->second == self_) session_->live_.erase(found);
}

void RemoteHandle::enter(Object& self, const Remote& remote) const {
  identity_ = identity_of(*remote.object());
  self_ = &self;
  if (identity_) session_->live_.try_emplace(identity_.get(), &self);
}

com::Unknown* RemoteHandle::remote_reference() {
  com::Dispatch* object = remote().object();
  object->AddRef();
  return object;
}

std::optional<Variant> RemoteHandle::probe(Member member, GivenList arguments) const noexcept {
  try {
    return remote().probe(member, *session_, arguments);
  } catch (...) {
    return std::nullopt;
  }
}

Variant RemoteHandle::converted(Member member, Variant value, server::Shape shape) {
  if (server::convert(value, {shape, ""}) != server::Conversion::done) fail_type(member);
  return value;
}

void RemoteHandle::fail_type(Member member) {
  constexpr std::int32_t type_mismatch = 13;
  const std::string call(name_of(member));
  throw host::HostFailure(type_mismatch, call + " answers a value of another type", call);
}

void RemoteHandle::fail_nothing(Member member) {
  constexpr std::int32_t no_object = 91;
  const std::string call(name_of(member));
  throw host::HostFailure(no_object, call + " answers no object", call);
}

std::string RemoteHandle::text(Member member, GivenList arguments) const {
  return converted(member, get(member, arguments), server::Shape::text).text();
}

std::int32_t RemoteHandle::number(Member member, GivenList arguments) const {
  return *converted(member, get(member, arguments), server::Shape::number).get_if<std::int32_t>();
}

bool RemoteHandle::flag(Member member, GivenList arguments) const {
  return *converted(member, get(member, arguments), server::Shape::boolean).get_if<bool>();
}

std::int32_t RemoteHandle::count_of(const Remote& list) const {
  return *converted(Member::Count, list.get(Member::Count, *session_), server::Shape::number)
              .get_if<std::int32_t>();
}

}  // namespace qto::late_bound
