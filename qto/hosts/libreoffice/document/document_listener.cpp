#include "qto/hosts/libreoffice/document/document_listener.hpp"

#include "qto/hosts/libreoffice/document/document.hpp"

namespace qto::libreoffice {

void DocumentListener::modified(const com::sun::star::lang::EventObject&) {
  if (document_ && !document_->evaluating) document_->changed();
}

void DocumentListener::disposing(const com::sun::star::lang::EventObject&) {
  if (document_) document_->gone();
}

}  // namespace qto::libreoffice
