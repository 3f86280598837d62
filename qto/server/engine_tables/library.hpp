#pragma once

#include "qto/server/tables/table.hpp"

/// The tables of the classes that the library offers, one source file each.
namespace qto::server::engine_tables {

extern const ClassTable drill_down_table;
extern const ClassTable linked_book_table;
extern const ClassTable linked_books_table;
extern const ClassTable link_list_table;
extern const ClassTable model_part_table;
extern const ClassTable model_parts_table;
extern const ClassTable drill_options_table;

}  // namespace qto::server::engine_tables

namespace qto::server {

/// QTOEngine 1.0: seven classes and five enumerations.
const LibraryTable& engine_library();

/// The class of that name in a library (letter case ignored), or null.
const ClassTable* find_class(const LibraryTable& library, std::string_view name);

}  // namespace qto::server
