#pragma once

#include <string_view>

/// What the desktop does for an application; nothing where there is none.
namespace qto::late_bound {

/// Works off the messages that wait in this thread's queue.
void work_off_messages();
/// Brings the window of that title to the front.
void bring_window_to_front(std::string_view title);

}  // namespace qto::late_bound
