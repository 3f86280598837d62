#include "qto/hosts/embedded/objects/raise.hpp"

#include "qto/host/failure.hpp"

namespace qto::embedded {

void fail(const std::string& text) { throw host::HostFailure(host::general_failure, text); }

void no_member(const std::string& text) { throw host::HostFailure(host::no_such_member, text); }

void fail_gone() { fail("The object no longer exists: its sheet was deleted or its book closed"); }

}  // namespace qto::embedded
