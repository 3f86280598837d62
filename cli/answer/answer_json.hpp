#pragma once

#include <vector>

#include "cli/answer/drill.hpp"
#include "cli/asking/arguments.hpp"
#include "cli/links/link_states.hpp"
#include "cli/output/json_writer.hpp"
#include "cli/output/reports.hpp"
#include "cli/terminal/progress.hpp"

namespace qto::cli {

/// The member "reports" of every answer.
void write_reports(JsonWriter& json, const Reports& reports);

/// The answer of one drill as an object.
void write_drill(JsonWriter& json, const Arguments& arguments, Drill& drill,
                 const OpenFailures& failures, const Reports& reports, Progress& progress);
/// Around the answers of several drills, the members of one object.
void begin_answers(JsonWriter& json, Operation operation);
void end_answers(JsonWriter& json);
/// Each prints one JSON object on standard output.
void write_item(const Ref<ModelPart>& part, const Reports& reports);
void write_book_links(const std::vector<LinkState>& links, const Reports& reports);

}  // namespace qto::cli
