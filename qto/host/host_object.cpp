#include "qto/host/host_object.hpp"

#include "qto/host/application.hpp"

namespace qto::host {

Ref<host::Application> HostObject::Application() const { return application(); }

}  // namespace qto::host
