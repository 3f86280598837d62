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

std::string no_formula(const std::string& item, const Ref<Object>& start) {
  const auto cell = ref_cast<host::Range>(start);
  if (!cell) return item + " holds no formula, so nothing feeds it. Start from one that does";
  const bool empty = cell->value().is_empty();
  return fmt::format(
      "{} {}, so nothing feeds it. Start from a cell with a formula", place_of(*cell),
      empty ? "is empty" : "holds the constant " + one_line(cell->Text()) + ", no formula");
}

Ref<host::Range> circle_in(const host::Workbook& book) {
  for (int i = 1; i <= book.WorksheetsCount(); ++i)
    if (auto cell = book.Worksheets(i)->CircularReference()) return cell;
  return nullptr;
}

std::string circular(const host::Workbook& book) {
  const auto cell = circle_in(book);
  const std::string where =
      cell ? fmt::format("sheet {} has a circular reference: {} depends on itself",
                         cell->Worksheet()->Name(), place_of(*cell))
           : "the book has a circular reference";
  return book.Name() + ": " + where +
         ". Break the circle, or look at it level by level with 'qto tree … --depth N'";
}

}  // namespace

std::string error_number_text(std::int32_t number) {
  return fmt::format("{:08X}", static_cast<std::uint32_t>(number));
}

std::string refusal_text(std::int32_t number, const Ref<host::Workbook>& book,
                         const std::string& item, const Ref<Object>& start) {
  switch (static_cast<ErrorNumber>(number)) {
    case ErrorNumber::wrong_object:
      return item + " is nothing that can be followed. Start from one cell, or from a chart's " +
             "series";
    case ErrorNumber::no_formula:
      return no_formula(item, start);
    case ErrorNumber::circular_reference:
      return circular(*book);
    case ErrorNumber::out_of_range:
      return "a number is outside its range";
    case ErrorNumber::unknown_token:
      return "a formula below " + item + " could not be read. 'qto tree … --depth N' shows how " +
             "far it can be followed";
  }
  return fmt::format("{} was refused with the number {}", item, error_number_text(number));
}

}  // namespace qto::cli
