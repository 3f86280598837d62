#pragma once

#include <com/sun/star/uno/Exception.hpp>
#include <string>
#include <utility>

#include "qto/host/failure.hpp"
#include "qto/hosts/libreoffice/office/uno_text.hpp"

/// The failures of the object model.
namespace qto::libreoffice {

[[noreturn]] inline void fail(const std::string& text, const std::string& call = {}) {
  throw host::HostFailure(host::general_failure, text, call);
}

[[noreturn]] inline void no_member(const std::string& text, const std::string& call = {}) {
  throw host::HostFailure(host::no_such_member, text, call);
}

[[noreturn]] inline void fail_gone() {
  fail("The object no longer exists: its sheet was deleted or its book closed");
}

/// Runs calls of the suite; what they throw becomes a failure of the host that says what was tried.
template <class Calls>
auto guarded(const char* what, Calls&& calls) -> decltype(calls()) {
  try {
    return calls();
  } catch (const com::sun::star::uno::Exception& thrown) {
    fail(std::string(what) + ": LibreOffice says: " + utf8(thrown.Message));
  }
}

}  // namespace qto::libreoffice
