#include "qto/server/host_tables/library.hpp"

namespace qto::server {
namespace {

using namespace host_tables;

constexpr const ClassTable* class_list[] = {&application_table,   &workbooks_table,
                                            &workbook_table,      &worksheets_table,
                                            &sheets_table,        &names_table,
                                            &worksheet_table,     &range_table,
                                            &name_table,          &chart_table,
                                            &series_table,        &chart_object_table,
                                            &chart_objects_table, &series_collection_table,
                                            &chart_area_table,    &pivot_table_table,
                                            &pivot_tables_table,  &worksheet_function_table,
                                            &rows_table,          &columns_table,
                                            &areas_table,         &window_table,
                                            &pane_table};

}  // namespace

const LibraryTable& host_library() {
  static constexpr LibraryTable library{
      "QTOHost", "Spreadsheet host of its own.", own_guid(0x1001), class_list, {}};
  return library;
}

}  // namespace qto::server
