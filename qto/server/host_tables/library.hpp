#pragma once

#include "qto/server/tables/table.hpp"

/// The tables of the host's classes.
namespace qto::server::host_tables {

extern const ClassTable application_table;
extern const ClassTable workbooks_table;
extern const ClassTable workbook_table;
extern const ClassTable worksheets_table;
extern const ClassTable sheets_table;
extern const ClassTable names_table;
extern const ClassTable worksheet_table;
extern const ClassTable range_table;
extern const ClassTable name_table;
extern const ClassTable chart_table;
extern const ClassTable series_table;
extern const ClassTable chart_object_table;
extern const ClassTable chart_objects_table;
extern const ClassTable series_collection_table;
extern const ClassTable chart_area_table;
extern const ClassTable pivot_table_table;
extern const ClassTable pivot_tables_table;
extern const ClassTable worksheet_function_table;
extern const ClassTable rows_table;
extern const ClassTable columns_table;
extern const ClassTable areas_table;
extern const ClassTable window_table;
extern const ClassTable pane_table;

}  // namespace qto::server::host_tables

namespace qto::server {

/// QTOHost: the host's object model by name. No class of it is creatable here; a library that
/// brings a host offers its application.
const LibraryTable& host_library();

}  // namespace qto::server
