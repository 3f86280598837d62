#pragma once

#include <utility>

#include "qto/host/defined_name.hpp"
#include "qto/hosts/late_bound/proxy.hpp"

namespace qto::late_bound {

class NameProxy final : public ProxyOf<host::DefinedName> {
 public:
  using ProxyOf::ProxyOf;
  std::string Name() const override { return text(HostMember::Name); }
  std::string NameLocal() const override { return text(HostMember::NameLocal); }
  int Index() const override { return number(HostMember::Index); }
  bool Visible() const override { return flag(HostMember::Visible); }
  std::string RefersTo() const override { return text(HostMember::RefersTo); }
  std::string RefersToLocal() const override { return text(HostMember::RefersToLocal); }
  std::string RefersToR1C1Local() const override { return text(HostMember::RefersToR1C1Local); }
};

/// A name that was found, or null when it has no place among the names any more.
inline Ref<host::DefinedName> existing(Ref<host::DefinedName> name) {
  return name && name->Index() != 0 ? std::move(name) : nullptr;
}

}  // namespace qto::late_bound
