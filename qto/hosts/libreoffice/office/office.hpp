#pragma once

#include <com/sun/star/uno/XComponentContext.hpp>
#include <memory>

#include "qto/hosts/libreoffice/office/profile.hpp"

/// The office suite inside this process.
namespace qto::libreoffice {

namespace uno = com::sun::star::uno;

/// Started once and kept until the process ends, for it cannot be started a second time. When the
/// process exits, it ends there and then: exit handlers and static objects from before the start
/// have no turn. Without windows, with a profile of its own; signal handlers of the process stay as
/// they are.
class Office {
 public:
  /// The running suite, started when it is not. Throws HostFailure when LibreOffice is not
  /// installed, lacks its spreadsheet or is of another version than this library is made for.
  static Office& running();

  const uno::Reference<uno::XComponentContext>& context() const noexcept { return context_; }
  /// An object of the suite's services.
  uno::Reference<uno::XInterface> create(const char* service) const;

 private:
  struct ExitWatch {
    ~ExitWatch();
  };

  Office();
  void check_version() const;
  [[noreturn]] void end_process(int status);

  std::unique_ptr<Profile> profile_;
  uno::Reference<uno::XComponentContext> context_;
};

}  // namespace qto::libreoffice
