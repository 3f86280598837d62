#pragma once

#include <string>
#include <string_view>

#include "qto/hosts/embedded/objects/open_book.hpp"

namespace qto::embedded {

/// The formula with every reference into another workbook, written by the book's name or path, as a
/// numbered link of the book; links that are not there yet are added.
std::string number_links(std::string_view formula, OpenBook& book);
/// The same without adding links: references into other workbooks stay as they are.
std::string number_known_links(std::string_view formula, const OpenBook& book);

}  // namespace qto::embedded
