#pragma once

#include "qto/automation/server/table.hpp"

/// The tables of the host's classes.
namespace qto::server {

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

}  // namespace qto::server
