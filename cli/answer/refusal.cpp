#include "cli/answer/refusal.hpp"

#include <fmt/format.h>

#include "cli/output/part_text.hpp"
#include "qto/automation/address.hpp"
#include "qto/automation/error.hpp"
#include "qto/host/host.hpp"

namespace qto::cli {
namespace {

std::string place_of(const host::Range& cell) {
  std::string place;
  append_sheet_name(place, cell.Worksheet()->Name());
  return place + "!" + cell.Address(false, false);
}

/// A cell and what it holds instead of a formula.
std::string unfed(const std::string& item, const Ref<Object>& start) {
  const auto cell = ref_cast<host::Range>(start);
  if (!cell) return item;
  return place_of(*cell) +
         (cell->value().is_empty() ? " is empty" : " holds the constant " + one_line(cell->Text()));
}

Ref<host::Range> circle_in(const host::Workbook& book) {
  for (int i = 1; i <= book.WorksheetsCount(); ++i)
    if (auto cell = book.Worksheets(i)->CircularReference()) return cell;
  return nullptr;
}

std::string circle(const host::Workbook& book) {
  const auto cell = circle_in(book);
  return cell ? book.Name() + ", where " + place_of(*cell) + " depends on itself" : book.Name();
}

}  // namespace

std::string error_number_text(std::int32_t number) {
  return fmt::format("{:08X}", static_cast<std::uint32_t>(number));
}

std::string refusal_text(std::int32_t number, const Ref<host::Workbook>& book,
                         const std::string& item, const Ref<Object>& start) {
  const AutomationError error(number);
  const std::string told = error.what();
  switch (static_cast<ErrorNumber>(number)) {
    case ErrorNumber::no_formula:
      return unfed(item, start) + ": " + told;
    case ErrorNumber::circular_reference:
      return circle(*book) + ": " + told;
    default:
      return item + ": " + told;
  }
}

}  // namespace qto::cli
