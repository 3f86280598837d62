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
      local_file(!Main::IsURL(workbook->Path())),
      stamp(worksheet->IdentityStamp()),
      prefix(PartKey::prefix_number(sheet_prefix(*workbook, name, local_file))) {}

std::string sheet_prefix(const host::Workbook& workbook, std::string_view sheet, bool local_file) {
  return "'" + Main::AddSeparator(workbook.Path(), local_file) + "[" + workbook.Name() + "]" +
         std::string(sheet) + "'!";
}

}  // namespace qto
