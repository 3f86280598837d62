#include "cli/book/item_text.hpp"

#include "cli/book/item.hpp"
#include "qto/automation/text.hpp"

namespace qto::cli {
namespace {

[[noreturn]] void bad_form(std::string_view text, const char* why) {
  throw ItemError("'" + std::string(text) + "' is no cell, name or series: " + why +
                  ". Write Sheet1!B7, 'My sheet'!B7, B7, Rate or 'Report(Chart 1)!Sales'");
}

/// Takes a name in apostrophes off the front of `rest`.
std::string take_quoted(std::string_view text, std::string_view& rest) {
  std::string name;
  for (std::size_t i = 1; i < rest.size(); ++i) {
    if (rest[i] != '\'') {
      name.push_back(rest[i]);
    } else if (i + 1 < rest.size() && rest[i + 1] == '\'') {
      name.push_back(rest[++i]);
    } else {
      rest.remove_prefix(i + 1);
      return name;
    }
  }
  bad_form(text, "an apostrophe is not closed");
}

}  // namespace

ItemText split_item(std::string_view text) {
  std::string_view rest = text::trim(text);
  if (rest.starts_with('=')) rest = text::trim(rest.substr(1));  // copied from a formula
  if (rest.empty()) bad_form(text, "it is empty");
  ItemText item;
  if (rest.front() == '\'') {
    item.has_sheet = true;
    item.sheet = take_quoted(text, rest);
    const std::size_t mark = rest.find('!');
    if (mark == std::string_view::npos) bad_form(text, "a '!' must follow the sheet");
    const std::string_view between = rest.substr(0, mark);
    if (between.size() > 2 && between.front() == '(' && between.back() == ')')
      item.chart = between.substr(1, between.size() - 2);
    else if (!between.empty())
      bad_form(text, "a '!' must follow the sheet");
    rest.remove_prefix(mark + 1);
  } else if (const std::size_t mark = rest.find('!'); mark != std::string_view::npos) {
    item.has_sheet = true;
    item.sheet = rest.substr(0, mark);
    rest.remove_prefix(mark + 1);
  }
  if (item.has_sheet && item.sheet.empty()) bad_form(text, "no sheet stands before the '!'");
  if (rest.empty()) bad_form(text, "nothing follows the '!'");
  item.rest = rest;
  return item;
}

}  // namespace qto::cli
