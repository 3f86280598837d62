#pragma once

/// All classes of the spreadsheet host, for clients that walk from one to the next.
#include "qto/host/application.hpp"
#include "qto/host/chart.hpp"
#include "qto/host/constants.hpp"
#include "qto/host/defined_name.hpp"
#include "qto/host/failure.hpp"
#include "qto/host/open_error.hpp"
#include "qto/host/pivot_table.hpp"
#include "qto/host/range.hpp"
#include "qto/host/sheet.hpp"
#include "qto/host/window.hpp"
#include "qto/host/workbook.hpp"
#include "qto/host/workbooks.hpp"
#include "qto/host/worksheet.hpp"
#include "qto/host/worksheet_function.hpp"
