#pragma once

#include <string>

#include "qto/hosts/libreoffice/document/document.hpp"

namespace qto::libreoffice {

/// Opens a file without a window, for reading only: links are not followed, macros not run, nobody
/// is asked. Throws host::OpenError when it is missing, no spreadsheet, damaged or needs another
/// password.
Document::Model load_document(const Office& office, const std::string& file,
                              const std::string& password);
/// An empty document with one sheet, Sheet1.
Document::Model new_document(const Office& office);
/// Closes a document without saving it; nothing happens when it is closed.
void close_document(const Document::Model& model) noexcept;

}  // namespace qto::libreoffice
