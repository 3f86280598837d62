#pragma once

#include <com/sun/star/util/XProtectable.hpp>
#include <string>
#include <string_view>

#include "qto/hosts/libreoffice/objects/application_object.hpp"

/// What worksheets and chart sheets have in common.
namespace qto::libreoffice {

/// Documents of files are read only: throws unless it is a new one.
void check_new(const Document& document);
/// Shows or hides a sheet; throws for the last visible one and for an unknown number.
void put_visibility(ApplicationObject& application, SheetSlot& slot, std::int32_t visibility);
/// Takes a protection away; a wrong password fails, naming `of`.
void unprotect(const uno::Reference<com::sun::star::util::XProtectable>& protection,
               const std::string& of, std::string_view password);
void unprotect(const SheetSlot& slot, std::string_view password);
/// Makes the sheet and its book active; throws for a hidden sheet.
void activate_sheet(ApplicationObject& application, SheetSlot& slot);
/// The same inside the active book only.
void select_sheet(ApplicationObject& application, SheetSlot& slot);
/// Whether the sheet is the one that the user sees.
bool is_active(ApplicationObject& application, const SheetSlot& slot);

}  // namespace qto::libreoffice
