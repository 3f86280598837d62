#include "qto/hosts/libreoffice/objects/sheet_operations.hpp"

#include <algorithm>

#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

using com::sun::star::util::XProtectable;

Document& document_of(const SheetSlot& slot) {
  if (!slot.document) fail_gone();
  return *slot.document;
}

}  // namespace

void check_new(const Document& document) {
  if (!document.is_new())
    fail(document.name() + " was opened for reading only: LibreOffice's files are not changed");
}

void put_visibility(ApplicationObject&, SheetSlot& slot, std::int32_t visibility) {
  Document& document = document_of(slot);
  if (visibility != host::xlSheetVisible && visibility != host::xlSheetHidden &&
      visibility != host::xlSheetVeryHidden)
    fail("No visibility has the number " + std::to_string(visibility));
  if (visibility == slot.visibility) return;
  if (uno::Reference<XProtectable>(document.model(), uno::UNO_QUERY_THROW)->isProtected())
    fail("The structure of " + document.name() + " is protected");
  const auto& sheets = document.sheets();
  const auto other = std::find_if(sheets.begin(), sheets.end(), [&](const auto& sheet) {
    return sheet.get() != &slot && sheet->visibility == host::xlSheetVisible;
  });
  if (visibility != host::xlSheetVisible) {
    if (other == sheets.end()) fail("A workbook must show one sheet at least");
    if (document.active == &slot) document.active = other->get();
  }
  slot.visibility = visibility;
}

void unprotect(const uno::Reference<XProtectable>& protection, const std::string& of,
               std::string_view password) {
  guarded("Unprotecting", [&] {
    if (!protection->isProtected()) return;
    try {
      protection->unprotect(wide(password));
    } catch (const uno::Exception&) {
      // Some kinds of protection throw at a wrong password, others stay.
    }
    if (protection->isProtected()) fail("The password does not unprotect " + of);
  });
}

void unprotect(const SheetSlot& slot, std::string_view password) {
  document_of(slot);
  unprotect(uno::Reference<XProtectable>(slot.sheet, uno::UNO_QUERY_THROW), "sheet " + slot.name,
            password);
}

void activate_sheet(ApplicationObject& application, SheetSlot& slot) {
  Document& document = document_of(slot);
  if (slot.visibility != host::xlSheetVisible) fail("Sheet " + slot.name + " is hidden");
  OpenBook& book = *application.book_of(document);
  application.activate(book);
  if (document.active != &slot) book.chart_sheet = nullptr;
  document.active = &slot;
}

void select_sheet(ApplicationObject& application, SheetSlot& slot) {
  Document& document = document_of(slot);
  if (application.active() != application.book_of(document))
    fail(document.name() + " is not active");
  activate_sheet(application, slot);
}

bool is_active(ApplicationObject& application, const SheetSlot& slot) {
  const Document& document = document_of(slot);
  return application.active() && &application.active()->document == &document &&
         document.active == &slot;
}

}  // namespace qto::libreoffice
