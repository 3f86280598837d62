#include "cli/asking/complaint.hpp"

#include <fmt/format.h>

#include "cli/output/json_writer.hpp"

namespace qto::cli {

void write_error(JsonWriter& json, const Complaint& complaint) {
  json.key("error");
  json.begin_object();
  if (!complaint.number.empty()) json.member("number", complaint.number);
  json.member("message", complaint.what());
  if (!complaint.file.empty()) json.member("file", complaint.file);
  if (!complaint.part.empty()) json.member("part", complaint.part);
  if (complaint.line > 0) json.member("line", std::int64_t{complaint.line});
  json.end_object();
}

void print_complaint(const Complaint& complaint, bool json_wanted) {
  if (!json_wanted) return fmt::print(stderr, "qto: {}\n", complaint.what());
  JsonWriter json(stdout);
  json.begin_object();
  write_error(json, complaint);
  json.end_object();
  json.finish();
}

}  // namespace qto::cli
