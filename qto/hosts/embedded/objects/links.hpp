#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/book/book.hpp"

/// What a book knows of the books that it links to, while those come and go.
namespace qto::embedded {

/// Tells the book that a linked book of that name was opened: what reads it must be calculated.
void links_changed(Book& book, std::string_view linked_name);
/// Before a linked book is closed: remembers its present values, as a file does.
void remember_values(Book& book, const Book& linked);

/// The full names of a book's linked workbooks as its file stores them, in the order of its links;
/// "" (or nothing at the end) for those that are where the file says.
using StoredNames = std::vector<std::string>;

/// Lets the links of a book show where the linked workbooks are. One that is not at its stored
/// place is looked for beside the book, then in the folders; where it is found nowhere the link
/// stays.
void resolve_links(Book& book, const std::vector<std::string>& folders, StoredNames& stored);
/// The same for one link.
void resolve_link(Book& book, std::size_t number, const std::vector<std::string>& folders,
                  StoredNames& stored);

/// The full name of a linked workbook as the book's file stores it.
std::string stored_name(const Book& book, std::size_t number, const StoredNames& stored);

}  // namespace qto::embedded
