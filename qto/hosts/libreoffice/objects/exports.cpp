#include "qto/hosts/libreoffice/objects/application_object.hpp"
#include "qto/hosts/libreoffice/start.hpp"

namespace {

/// The application that is there, as long as somebody holds it.
qto::libreoffice::ApplicationObject* living = nullptr;

}  // namespace

namespace qto::libreoffice {

void forget_application(const ApplicationObject& application) noexcept {
  if (living == &application) living = nullptr;
}

}  // namespace qto::libreoffice

extern "C" qto::host::Application* qto_libreoffice_application() {
  if (!living) living = new qto::libreoffice::ApplicationObject;
  living->add_ref();
  return living;
}
