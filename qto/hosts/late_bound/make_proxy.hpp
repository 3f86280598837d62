#pragma once

#include <string_view>

#include "qto/hosts/late_bound/session.hpp"

namespace qto::late_bound {

/// A new proxy of that class. An object of a class without a proxy becomes a host::HostObject that
/// tells its class when it belongs to an application, and else an object that tells its class
/// alone. Throws HostFailure when the object fails while it is looked at.
Ref<Object> make_proxy(const Ref<Session>& session, com::Holder<com::Dispatch> object,
                       std::string_view class_name);

}  // namespace qto::late_bound
