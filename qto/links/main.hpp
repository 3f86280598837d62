#pragma once

#include <string>

#include "qto/automation/ref.hpp"
#include "qto/host/application.hpp"

namespace qto {

class LinkedBooks;

/// The shared module: what every drill of the process has in common.
namespace Main {

/// The spreadsheet application of the last accepted start object; null in a fresh process.
const Ref<host::Application>& shared_application();
void set_shared_application(Ref<host::Application> application);

/// The linked workbooks that the engine opened, and those that it could not or was not to open.
/// Every new DrillDown replaces both by empty lists.
const Ref<LinkedBooks>& BooksOpened();
const Ref<LinkedBooks>& BooksNotOpened();
void reset_books();

/// The source of the pivot table that a range lies in, "" when it lies in none. When several meet
/// the range, the last one in the host's order decides.
std::string inpivottable(const Ref<host::Range>& range);

}  // namespace Main
}  // namespace qto
