#include "qto/model/sheet_record.hpp"

#include <utility>

#include "qto/links/path_helpers.hpp"
#include "qto/model/part_key.hpp"

namespace qto {

SheetRecord::SheetRecord(const Ref<host::Worksheet>& worksheet, Ref<Context> drill_context)
    : context(std::move(drill_context)),
      sheet(worksheet),
      workbook(worksheet->Workbook()),
      name(worksheet->Name()),
      book_name(workbook->Name()),
      book_path(workbook->Path()),
      local_file(!Main::IsURL(book_path)),
      stamp(worksheet->IdentityStamp()),
      prefix(PartKey::prefix_number(prefix_text())) {}

std::string SheetRecord::prefix_text() const {
  return "'" + Main::AddSeparator(book_path, local_file) + "[" + book_name + "]" + name + "'!";
}

}  // namespace qto
