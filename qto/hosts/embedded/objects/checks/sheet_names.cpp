#include "qto/hosts/embedded/objects/checks/sheet_names.hpp"

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"

namespace qto::embedded {

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
