#pragma once

#include <string>
#include <string_view>

namespace qto::libreoffice {

/// A book that formulas refer to.
struct LinkTarget {
  std::string folder;  ///< with its last separator; "" when the book is open
  std::string name;    ///< file name
};

/// Folder and file name of the address by which the suite names a book: file:///…, https://….
LinkTarget link_target(std::string_view url);

/// Appends what stands before the "!" and the "!": [Book2.xlsx]Sheet1!, 'D:\Data\[Book2.xlsx]A'!,
/// Book2.xlsx! when there are no `sheets` (one, or a span with a colon).
void append_link(std::string& out, const LinkTarget& link, std::string_view sheets);

/// Appends a qualifier of the own book: Sheet1!, 'My sheet'!, 'A b:C'!.
void append_sheets(std::string& out, std::string_view first, std::string_view last);

}  // namespace qto::libreoffice
