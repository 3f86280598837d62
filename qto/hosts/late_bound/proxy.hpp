#pragma once

#include <utility>

#include "qto/host/application.hpp"
#include "qto/hosts/late_bound/session.hpp"

namespace qto::late_bound {

/// What all proxies have in common: owner, application, and whether the object is still there.
template <class Interface>
class ProxyOf : public Interface, public RemoteHandle {
 public:
  ProxyOf(Ref<Session> session, Remote remote)
      : RemoteHandle(std::move(session), std::move(remote)) {
    enter(*this, remote_);
  }
  Ref<host::HostObject> Parent() const override {
    return any_object<host::HostObject>(HostMember::Parent);
  }
  bool exists() const noexcept override { return probe(HostMember::Application).has_value(); }

 protected:
  /// Of an object that is reached later.
  explicit ProxyOf(Ref<Session> session) : RemoteHandle(std::move(session)) {}
  Ref<host::Application> application() const override {
    return need<host::Application>(HostMember::Application, "Application");
  }
};

/// An object of a class that the host interface does not have.
class OtherProxy final : public ProxyOf<host::HostObject> {
 public:
  OtherProxy(Ref<Session> session, Remote remote, std::string_view class_name)
      : ProxyOf(std::move(session), std::move(remote)), class_name_(class_name) {}
  std::string_view TypeName() const noexcept override { return class_name_; }

 private:
  std::string class_name_;
};

/// An object that belongs to no application.
class ForeignObject final : public Object, public RemoteHandle {
 public:
  ForeignObject(Ref<Session> session, Remote remote, std::string_view class_name)
      : RemoteHandle(std::move(session), std::move(remote)), class_name_(class_name) {
    enter(*this, remote_);
  }
  std::string_view TypeName() const noexcept override { return class_name_; }

 private:
  std::string class_name_;
};

}  // namespace qto::late_bound
