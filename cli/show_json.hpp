#pragma once

#include "cli/picture.hpp"
#include "cli/reports.hpp"
#include "cli/show_series.hpp"
#include "qto/model/model_part.hpp"

namespace qto::cli {

/// Each prints one JSON object on standard output.
void write_picture(ModelPart& part, const Picture& picture, const Reports& reports);
void write_series_view(ModelPart& part, const SeriesView& view, const Reports& reports);

}  // namespace qto::cli
