#pragma once

#include <com/sun/star/util/XModifyListener.hpp>
#include <cppuhelper/implbase1.hxx>

namespace qto::libreoffice {

class Document;

/// Hears that a document was changed or closed, whoever did it.
class DocumentListener final : public cppu::WeakImplHelper1<com::sun::star::util::XModifyListener> {
 public:
  explicit DocumentListener(Document& document) : document_(&document) {}
  void forget() noexcept { document_ = nullptr; }

  void SAL_CALL modified(const com::sun::star::lang::EventObject&) override;
  void SAL_CALL disposing(const com::sun::star::lang::EventObject&) override;

 private:
  Document* document_;
};

}  // namespace qto::libreoffice
