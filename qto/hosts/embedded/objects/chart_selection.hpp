#pragma once

#include "qto/hosts/embedded/objects/chart_place.hpp"

namespace qto::embedded {

/// The chart at a place: the chart sheet itself or an embedded one. Throws when it is gone.
Ref<host::Chart> chart_at(const ChartPlace& place);
/// The activated chart of a book, or null.
Ref<host::Chart> active_chart(OpenBook& book);
/// The selected series; only while OpenBook::chart_selection names one.
Ref<host::Series> selected_series(OpenBook& book);

}  // namespace qto::embedded
