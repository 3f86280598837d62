#include "qto/hosts/embedded/objects/editing/sheet_edits.hpp"

#include <algorithm>

#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/checks/sheet_names.hpp"
#include "qto/hosts/embedded/objects/editing/rename_references.hpp"
#include "qto/hosts/embedded/objects/sheet_operations.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"

namespace qto::embedded {
namespace {

OpenBook& book_to_edit(const Ref<host::Sheet>& sheet) {
  const auto workbook = sheet ? ref_cast<WorkbookObject>(sheet->Workbook()) : nullptr;
  if (!workbook) fail("A sheet of this application is needed");
  OpenBook& open = workbook->open();
  if (open.book().structure.enabled) fail("The structure of " + open.book().name + " is protected");
  return open;
}

Sheet& sheet_to_edit(const OpenBook& open, const Ref<host::Sheet>& sheet) {
  return *open.book().find_sheet(sheet->Name());
}

}  // namespace

void delete_sheet(const Ref<host::Sheet>& sheet) {
  OpenBook& open = book_to_edit(sheet);
  Sheet& target = sheet_to_edit(open, sheet);
  if (!another_is_visible(open.book(), target)) fail("A workbook must show one sheet at least");
  open.remove_sheet(target);
}

void rename_sheet(const Ref<host::Sheet>& sheet, std::string_view new_name) {
  OpenBook& open = book_to_edit(sheet);
  Sheet& target = sheet_to_edit(open, sheet);
  check_sheet_name(open.book(), new_name, &target);
  const std::string old_name = target.name;
  open.book().rename_sheet(target, std::string(new_name));
  rename_references(open, old_name, new_name);
  open.slot(target).stamp = next_stamp();
}

}  // namespace qto::embedded
