#include "qto/hosts/late_bound/session.hpp"

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

#include "qto/com/conversion.hpp"
#include "qto/com/errors.hpp"
#include "qto/host/failure.hpp"
#include "qto/hosts/late_bound/late_bound.hpp"
#include "qto/hosts/late_bound/make_proxy.hpp"

namespace qto::late_bound {
namespace {

/// Which session knows an application or another remote object. A session is used by the thread of
/// its application; this table alone is shared by all.
class SessionTable {
 public:
  Ref<Session> find(const com::Unknown* identity) const {
    const std::lock_guard lock(guard_);
    const auto found = sessions_.find(identity);
    return found == sessions_.end() ? nullptr : Ref<Session>(found->second);
  }
  void enter(const com::Unknown* identity, Session& session) {
    const std::lock_guard lock(guard_);
    sessions_.try_emplace(identity, &session);
  }
  bool empty() const noexcept {
    const std::lock_guard lock(guard_);
    return sessions_.empty();
  }
  void remove(const com::Unknown* identity, const Session& session) {
    const std::lock_guard lock(guard_);
    const auto found = sessions_.find(identity);
    if (found != sessions_.end() && found->second == &session) sessions_.erase(found);
  }

 private:
  mutable std::mutex guard_;
  std::unordered_map<const com::Unknown*, Session*> sessions_;
};

// Plain, for proxies may go after the statics of the module.
std::mutex making_table;
constinit SessionTable* table_of_sessions = nullptr;

SessionTable& sessions() {
  const std::lock_guard lock(making_table);
  if (!table_of_sessions) table_of_sessions = new SessionTable;
  return *table_of_sessions;
}

/// Passes no objects.
class NoObjects final : public com::ObjectMarshaler {
 public:
  com::Unknown* marshal(const Ref<Object>&) override { return nullptr; }
  Ref<Object> unmarshal(com::Unknown&) override {
    throw com::CallFailure(com::CallError::type_mismatch);
  }
};

com::Holder<com::Dispatch> counted(com::Dispatch& object) {
  object.AddRef();
  return com::Holder<com::Dispatch>(&object);
}

com::Holder<com::Dispatch> dispatch_of(com::Unknown& unknown) {
  void* found = nullptr;
  if (unknown.QueryInterface(com::iid_dispatch, &found) != com::ok || !found)
    throw com::CallFailure(com::CallError::type_mismatch);
  return com::Holder<com::Dispatch>(static_cast<com::Dispatch*>(found));
}

/// The identity of the application that the object belongs to; its own when it tells none.
com::Holder<com::Unknown> application_of(com::Dispatch& object) {
  MemberIds ids("");
  NoObjects marshaler;
  try {
    const auto application =
        Remote(counted(object), ids).get_object(HostMember::Application, marshaler);
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
  if (auto known = sessions().find(own.get())) return known;
  const auto application = application_of(object);
  if (auto known = sessions().find(application.get())) return known;
  return make_ref<Session>(application.get());
}

Session::Session(com::Unknown* application) : application_(application) {
  if (application_) application_->AddRef();
  sessions().enter(application_, *this);
}

Session::~Session() {
  sessions().remove(application_, *this);
  if (application_) application_->Release();
}

MemberIds& Session::ids_of(std::string_view class_name) {
  const auto found = ids_.find(class_name);
  if (found != ids_.end()) return found->second;
  return ids_.try_emplace(std::string(class_name), std::string(class_name)).first->second;
}

com::Unknown* Session::marshal(const Ref<Object>& object) {
  if (auto* remote = dynamic_cast<com::RemoteObject*>(object.get()))
    return remote->remote_reference();
  throw com::CallFailure(com::CallError::type_mismatch);
}

Ref<Object> Session::unmarshal(com::Unknown& unknown) {
  if (const auto known = live_.find(identity_of(unknown).get()); known != live_.end())
    return Ref<Object>(known->second);
  auto object = dispatch_of(unknown);
  const std::string class_name = class_of(*object.get());
  return make_proxy(Ref<Session>(this), std::move(object), class_name);
}

Ref<Object> Session::unmarshal_as(com::Unknown& unknown, std::string_view class_name) {
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
  static std::atomic<std::uint64_t> last = std::uint64_t{1} << 63;
  return ++last;
}

RemoteHandle::~RemoteHandle() {
  if (!identity_) return;
  const auto found = session_->live_.find(identity_.get());
  if (found != session_->live_.end() && found->second == self_) {
    session_->live_.erase(found);
    if (identity_.get() != session_->application_) sessions().remove(identity_.get(), *session_);
  }
}

void RemoteHandle::enter(Object& self, const Remote& remote) const {
  identity_ = identity_of(*remote.object());
  self_ = &self;
  if (!identity_) return;
  session_->live_.try_emplace(identity_.get(), &self);
  sessions().enter(identity_.get(), *session_);
}

com::Unknown* RemoteHandle::remote_reference() {
  com::Dispatch* object = remote().object();
  object->AddRef();
  return object;
}

std::optional<Variant> RemoteHandle::probe(HostMember member, GivenList arguments) const noexcept {
  try {
    return remote().probe(member, *session_, arguments);
  } catch (...) {
    return std::nullopt;
  }
}

Variant RemoteHandle::converted(HostMember member, Variant value, com::Shape shape) {
  if (com::convert(value, {shape, ""}) != com::Conversion::done) fail_type(member);
  return value;
}

void RemoteHandle::fail_type(HostMember member) {
  constexpr std::int32_t type_mismatch = 13;
  const std::string call(name_of(member));
  throw host::HostFailure(type_mismatch, call + " answers a value of another type", call);
}

void RemoteHandle::fail_nothing(HostMember member) {
  constexpr std::int32_t no_object = 91;
  const std::string call(name_of(member));
  throw host::HostFailure(no_object, call + " answers no object", call);
}

std::string RemoteHandle::text(HostMember member, GivenList arguments) const {
  return converted(member, get(member, arguments), com::Shape::text).text();
}

std::int32_t RemoteHandle::number(HostMember member, GivenList arguments) const {
  return *converted(member, get(member, arguments), com::Shape::number).get_if<std::int32_t>();
}

bool RemoteHandle::flag(HostMember member, GivenList arguments) const {
  return *converted(member, get(member, arguments), com::Shape::boolean).get_if<bool>();
}

std::int32_t RemoteHandle::count_of(const Remote& list) const {
  return *converted(HostMember::Count, list.get(HostMember::Count, *session_), com::Shape::number)
              .get_if<std::int32_t>();
}

void forget_sessions() noexcept {
  const std::lock_guard lock(making_table);
  if (table_of_sessions && table_of_sessions->empty())
    delete std::exchange(table_of_sessions, nullptr);
}

}  // namespace qto::late_bound
