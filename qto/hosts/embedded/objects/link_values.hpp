#pragma once

#include <string_view>

#include "qto/hosts/embedded/book/book.hpp"

/// What a book knows of the books that it links to, while those come and go.
namespace qto::embedded {

/// Tells the book that a linked book of that name was opened: what reads it must be calculated.
void links_changed(Book& book, std::string_view linked_name);
/// Before a linked book is closed: remembers its present values, as a file does.
void remember_values(Book& book, const Book& linked);

}  // namespace qto::embedded
