#pragma once

#include "qto/automation/object.hpp"
#include "qto/com/com.hpp"

/// A host that is driven by name: the classes of qto/host over any application whose objects take
/// late-bound calls.
namespace qto::late_bound {

/// The proxy of an application's object, of the class that its type information tells; the same one
/// for the same object as long as somebody holds it. Throws com::CallFailure (type mismatch) for
/// an object without late-bound calls, and host::HostFailure when it fails while it is looked at.
Ref<Object> proxy_of(com::Unknown& unknown);

/// Gives up what is kept between applications, where no proxy is left; for a library that may be
/// unloaded.
void forget_sessions() noexcept;

}  // namespace qto::late_bound
