#include "qto/hosts/embedded/objects/sheet_operations.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/objects/checks/password.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"

namespace qto::embedded {

bool another_is_visible(const Book& book, const Sheet& sheet) {
  return std::any_of(book.sheets().begin(), book.sheets().end(), [&](const auto& other) {
    return other.get() != &sheet && other->visibility == SheetVisibility::visible;
  });
}

void put_visibility(OpenBook& book, Sheet& sheet, std::int32_t visibility) {
  const auto wanted = static_cast<SheetVisibility>(visibility);
  if (wanted != SheetVisibility::visible && wanted != SheetVisibility::hidden &&
      wanted != SheetVisibility::very_hidden)
    fail("No visibility has the number " + std::to_string(visibility));
  if (wanted == sheet.visibility) return;
  if (book.book().structure.enabled) fail("The structure of " + book.book().name + " is protected");
  if (wanted != SheetVisibility::visible && !another_is_visible(book.book(), sheet))
    fail("A workbook must show one sheet at least");
  const bool was_active = &book.active_sheet() == &sheet;
  sheet.visibility = wanted;
  if (!was_active || wanted == SheetVisibility::visible) return;
  const auto& sheets = book.book().sheets();
  const auto next = std::find_if(sheets.begin(), sheets.end(), [](const auto& other) {
    return other->visibility == SheetVisibility::visible;
  });
  book.set_active_sheet(**next);
}

void unprotect(Sheet& sheet, std::string_view password) {
  unprotect(sheet.protection, "sheet " + sheet.name, password);
}

void activate_sheet(OpenBook& book, Sheet& sheet) {
  if (sheet.visibility != SheetVisibility::visible) fail("Sheet " + sheet.name + " is hidden");
  book.application().activate(book);
  book.set_active_sheet(sheet);
}

void select_sheet(OpenBook& book, Sheet& sheet) {
  if (book.application().active_book() != &book) fail(book.book().name + " is not active");
  activate_sheet(book, sheet);
}

bool is_active(const OpenBook& book, const Sheet& sheet) {
  return book.application().active_book() == &book && &book.active_sheet() == &sheet;
}

void check_sheet_name(const Book& book, std::string_view name, const Sheet* self) {
  constexpr std::size_t longest = 31;
  const bool possible = !name.empty() && text::utf16_length(name) <= longest &&
                        name.find_first_of(":\\/?*[]") == std::string_view::npos &&
                        name.front() != '\'' && name.back() != '\'';
  if (!possible) fail("Not possible as a sheet name: " + std::string(name));
  const Sheet* other = book.find_sheet(name);
  if (other && other != self) fail("There is a sheet " + other->name + " already");
}

std::string free_sheet_name(const Book& book) {
  for (std::size_t number = book.sheets().size() + 1;; ++number) {
    std::string name = "Sheet" + std::to_string(number);
    if (!book.find_sheet(name)) return name;
  }
}

}  // namespace qto::embedded
