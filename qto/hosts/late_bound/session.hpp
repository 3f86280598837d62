#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qto/com/values.hpp"
#include "qto/hosts/late_bound/remote.hpp"

namespace qto::late_bound {

/// What all proxies of one application share: the identifiers of its members, and which proxy
/// stands for which remote object. It lives as long as one of them.
class Session final : public RefCounted, public com::ObjectMarshaler {
 public:
  /// The session of the application that an object belongs to; a new one for an application that no
  /// proxy stands for yet.
  static Ref<Session> of(com::Dispatch& object);

  explicit Session(com::Unknown* application);
  ~Session() override;

  MemberIds& ids_of(std::string_view class_name);
  Remote remote(com::Holder<com::Dispatch> object, std::string_view class_name) {
    return {std::move(object), ids_of(class_name)};
  }

  /// A proxy's own remote object, any other object as itself when it has one.
  com::Unknown* marshal(const Ref<Object>& object) override;
  /// The proxy of a remote object, of the class that its type information tells.
  Ref<Object> unmarshal(com::Unknown& unknown) override;
  /// The same where the class is known beforehand.
  Ref<Object> unmarshal_as(com::Unknown& unknown, std::string_view class_name);

  /// The number that stands for a text of names together with one object.
  std::uint64_t stamp_of(std::uint64_t object, const std::string& names);
  /// A number that no other object of the process has.
  static std::uint64_t next_serial() noexcept;

 private:
  friend class RemoteHandle;
  com::Unknown* application_;  // its identity, counted
  std::map<std::string, MemberIds, std::less<>> ids_;
  std::unordered_map<com::Unknown*, Object*> live_;
  std::map<std::pair<std::uint64_t, std::string>, std::uint64_t> stamps_;
};

/// What is the same for all references to an object; counted. Null when it cannot be told.
com::Holder<com::Unknown> identity_of(com::Unknown& unknown);

/// A marshaler for answers of a known class, which need no look at their type information.
class ClassMarshaler final : public com::ObjectMarshaler {
 public:
  ClassMarshaler(Session& session, std::string_view class_name)
      : session_(session), class_name_(class_name) {}
  com::Unknown* marshal(const Ref<Object>& object) override { return session_.marshal(object); }
  Ref<Object> unmarshal(com::Unknown& unknown) override {
    return session_.unmarshal_as(unknown, class_name_);
  }

 private:
  Session& session_;
  std::string_view class_name_;
};

/// The part of a proxy that holds its remote object.
class RemoteHandle : public com::RemoteObject {
 public:
  RemoteHandle(const RemoteHandle&) = delete;
  RemoteHandle& operator=(const RemoteHandle&) = delete;
  com::Unknown* remote_reference() override;
  /// Gives a new object its name.
  void rename(std::string_view name) const { put(HostMember::Name, Variant(name)); }

 protected:
  /// An object that is reached when it is first needed has no remote yet.
  explicit RemoteHandle(Ref<Session> session) : session_(std::move(session)) {}
  RemoteHandle(Ref<Session> session, Remote remote)
      : session_(std::move(session)), remote_(std::move(remote)) {}
  ~RemoteHandle() override;

  /// The object itself; reaches it where that has not been done. Throws HostFailure.
  virtual const Remote& remote() const { return remote_; }
  /// Makes the proxy the one that stands for its remote object.
  void enter(Object& self, const Remote& remote) const;
  Session& session() const noexcept { return *session_; }
  const Ref<Session>& shared_session() const noexcept { return session_; }
  std::uint64_t serial() const noexcept { return serial_; }

  Variant get(HostMember member, GivenList arguments = {}) const {
    return remote().get(member, *session_, arguments);
  }
  /// Nothing when the call fails.
  std::optional<Variant> probe(HostMember member, GivenList arguments = {}) const noexcept;
  /// Each in its type; an answer that does not convert is a HostFailure (13).
  std::string text(HostMember member, GivenList arguments = {}) const;
  std::int32_t number(HostMember member, GivenList arguments = {}) const;
  bool flag(HostMember member, GivenList arguments = {}) const;
  std::int32_t count_of(const Remote& list) const;
  void call(HostMember member, GivenList arguments = {}) const { (void)get(member, arguments); }
  void put(HostMember member, const Variant& value) const {
    remote().put(member, *session_, value);
  }

  /// An object of a class that is known beforehand, or null for no object; of another class it is a
  /// HostFailure (13).
  template <class T>
  Ref<T> object(HostMember member, std::string_view class_name, GivenList arguments = {}) const {
    return item<T>(remote(), member, class_name, arguments);
  }
  /// The same where null is a HostFailure (91).
  template <class T>
  Ref<T> need(HostMember member, std::string_view class_name, GivenList arguments = {}) const {
    Ref<T> found = object<T>(member, class_name, arguments);
    if (!found) fail_nothing(member);
    return found;
  }
  /// An object whose own type information tells its class.
  template <class T>
  Ref<T> any_object(HostMember member, GivenList arguments = {}) const {
    return fitting<T>(member, get(member, arguments));
  }
  template <class T>
  Ref<T> find_object(const Remote& owner, HostMember member, std::string_view class_name,
                     GivenList arguments = {}) const {
    ClassMarshaler marshaler(*session_, class_name);
    const auto found = owner.probe(member, marshaler, arguments);
    return found ? ref_cast<T>(found->object()) : nullptr;
  }
  /// What a member of a collection answers.
  template <class T>
  Ref<T> item(const Remote& list, HostMember member, std::string_view class_name,
              GivenList arguments) const {
    ClassMarshaler marshaler(*session_, class_name);
    return fitting<T>(member, list.get(member, marshaler, arguments));
  }
  template <class T>
  std::vector<Ref<T>> items(const Remote& list, std::string_view class_name) const {
    std::vector<Ref<T>> all;
    const std::int32_t count = count_of(list);
    for (std::int32_t i = 1; i <= count; ++i) {
      all.push_back(item<T>(list, HostMember::Item, class_name, {Variant(i)}));
      if (!all.back()) fail_nothing(HostMember::Item);
    }
    return all;
  }
  /// A collection, or another object that needs no proxy.
  Remote part(HostMember member, std::string_view class_name, GivenList arguments = {}) const {
    return session_->remote(remote().get_object(member, *session_, arguments), class_name);
  }
  /// A collection that stays the same as long as its owner lives.
  const Remote& kept_part(Remote& kept, HostMember member, std::string_view class_name) const {
    if (!kept) kept = part(member, class_name);
    return kept;
  }
  template <class T>
  static Ref<T> fitting(HostMember member, const Variant& answer) {
    const Ref<Object> object = answer.object();
    Ref<T> wanted = ref_cast<T>(object);
    const bool nothing = !object && (answer.is_object() || answer.is_empty() || answer.is_null());
    if (!wanted && !nothing) fail_type(member);
    return wanted;
  }
  static Variant converted(HostMember member, Variant value, com::Shape shape);
  [[noreturn]] static void fail_type(HostMember member);
  [[noreturn]] static void fail_nothing(HostMember member);

 private:
  Ref<Session> session_;

 protected:
  mutable Remote remote_;

 private:
  mutable com::Holder<com::Unknown> identity_;
  mutable Object* self_ = nullptr;
  std::uint64_t serial_ = Session::next_serial();
};

}  // namespace qto::late_bound
