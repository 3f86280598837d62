#pragma once

#include "cli/output/reports.hpp"
#include "cli/show/picture.hpp"
#include "cli/show/show_series.hpp"
#include "qto/model/model_part.hpp"

namespace qto::cli {

/// Each prints one JSON object on standard output.
void write_picture(ModelPart& part, const Picture& picture, const Reports& reports);
void write_series_view(ModelPart& part, const SeriesView& view, const Reports& reports);

}  // namespace qto::cli
