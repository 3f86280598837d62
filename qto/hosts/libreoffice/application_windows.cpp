#include "qto/host/failure.hpp"
#include "qto/hosts/libreoffice/application.hpp"

namespace qto::libreoffice {

Ref<host::Application> application() {
  throw host::HostFailure(host::general_failure, "LibreOffice is a host of qto on Linux only");
}

}  // namespace qto::libreoffice
