#pragma once

#include <string>
#include <string_view>

#include "qto/automation/ref.hpp"
#include "qto/host/application.hpp"
#include "qto/links/context.hpp"

/// The shared module: what the drills of an apartment have in common, as clients of the surface see
/// it. A drill and its parts work in the context that they hold.
namespace qto::Main {

/// The context of the start object that was accepted last on this thread.
const Ref<Context>& context();

/// Its application; null in a fresh apartment.
const Ref<host::Application>& shared_application();
/// Makes the context of an application the current one.
void set_shared_application(Ref<host::Application> application);

/// The linked workbooks that the engine opened, and those that it could not or was not to open.
/// Every new DrillDown replaces both by empty lists.
const Ref<LinkedBooks>& BooksOpened();
const Ref<LinkedBooks>& BooksNotOpened();
void reset_books();

/// The source of the pivot table that a range lies in, "" when it lies in none. When several meet
/// the range, the last one in the host's order decides.
std::string inpivottable(const Ref<host::Range>& range);

/// Asks the shared application to follow an address (mail, browser) through its first open
/// workbook, or through a new one that is closed again. Throws when that fails or when there is no
/// application yet.
void follow_hyperlink(std::string_view address);

}  // namespace qto::Main
