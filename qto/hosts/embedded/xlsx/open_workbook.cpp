#include "qto/hosts/embedded/xlsx/open_workbook.hpp"

#include <new>

#include "qto/hosts/embedded/xlsx/workbook_reader.hpp"

namespace qto::embedded {

std::unique_ptr<Book> open_workbook(const std::string& file, const OpenOptions& options) {
  try {
    return WorkbookReader(file, options).read();
  } catch (const std::bad_alloc&) {
    throw OpenFailure(OpenFailureKind::too_large, file, "", 0,
                      "the workbook needs more memory than there is");
  }
}

}  // namespace qto::embedded
