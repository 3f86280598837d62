#pragma once

#include "qto/host/application.hpp"

/// What the shared object of this host exports: the application, with one reference for the caller.
/// One at a time; it is started when there is none. Throws HostFailure.
extern "C" qto::host::Application* qto_libreoffice_application();
