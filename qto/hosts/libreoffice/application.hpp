#pragma once

#include "qto/host/application.hpp"

namespace qto::libreoffice {

/// LibreOffice as the spreadsheet host, inside this process: opens what LibreOffice opens (.ods,
/// .xls, .xlsb, .csv, .xlsx), answers with LibreOffice's own evaluation and never saves anything.
/// There is one application in a process; it is started by the first call and shared by later ones.
/// The host is a shared object that is loaded by this call, so that nothing else needs LibreOffice.
/// Throws host::HostFailure, which names the Debian package to install, when it cannot be.
Ref<host::Application> application();

}  // namespace qto::libreoffice
