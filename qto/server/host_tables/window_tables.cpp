#include <algorithm>
#include <limits>

#include "qto/server/host_tables/library.hpp"
#include "qto/server/host_tables/names.hpp"

namespace qto::server::host_tables {
namespace {

using host::Pane, host::Window;

/// Lines to scroll by; the two directions of one axis count against each other.
void small_scroll(Pane& pane, const std::optional<std::int32_t>& down,
                  const std::optional<std::int32_t>& up,
                  const std::optional<std::int32_t>& to_right,
                  const std::optional<std::int32_t>& to_left) {
  const auto difference = [](std::int64_t a, std::int64_t b) {
    constexpr std::int64_t limit = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(a - b, -limit, limit));
  };
  pane.SmallScroll(difference(up.value_or(0), down.value_or(0)),
                   difference(to_left.value_or(0), to_right.value_or(0)));
}

constexpr Member window_members[] = {
    get<&Window::ActivePane>(1, "ActivePane"),
    get<&Window::ScrollRow>(2, "ScrollRow"),
    put<&Window::put_ScrollRow>(2, "ScrollRow"),
    get<&Window::ScrollColumn>(3, "ScrollColumn"),
    put<&Window::put_ScrollColumn>(3, "ScrollColumn"),
    get<&application_of>(4, "Application"),
    get<&parent_of>(5, "Parent"),
};
static_assert(identifiers_fit(window_members));

constexpr Member pane_members[] = {
    get<&Pane::VisibleRange>(1, "VisibleRange"),
    method<&small_scroll>(2, "SmallScroll", "Down?, Up?, ToRight?, ToLeft?"),
    get<&application_of>(3, "Application"),
    get<&parent_of>(4, "Parent"),
};
static_assert(identifiers_fit(pane_members));

}  // namespace

constinit const ClassTable window_table =
    host_class<host::Window>("Window", "The window of a workbook.", 0x1160, window_members);
constinit const ClassTable pane_table =
    host_class<host::Pane>("Pane", "A part of a window that scrolls.", 0x1170, pane_members);

}  // namespace qto::server::host_tables
