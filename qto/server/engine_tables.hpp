#pragma once

#include "qto/server/table.hpp"

/// The tables of the classes that the library offers, one source file each.
namespace qto::server {

extern const ClassTable drill_down_table;
extern const ClassTable linked_book_table;
extern const ClassTable linked_books_table;
extern const ClassTable link_list_table;
extern const ClassTable model_part_table;
extern const ClassTable model_parts_table;
extern const ClassTable drill_options_table;

}  // namespace qto::server
