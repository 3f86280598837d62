#include "cli/answer/answer_json.hpp"

#include "cli/answer/tree_json.hpp"
#include "cli/output/json_writer.hpp"
#include "cli/output/part_json.hpp"

namespace qto::cli {
namespace {

void write_list(JsonWriter& json, std::string_view name, const Ref<ModelParts>& parts,
                Progress& progress) {
  json.key(name);
  json.begin_array();
  parts->for_each([&](ModelPart& part) {
    write_part(json, part);
    progress.count_one();
  });
  json.end_array();
}

}  // namespace

void write_reports(JsonWriter& json, const Reports& reports) {
  json.key("reports");
  json.begin_array();
  for (const auto& report : reports.kept()) {
    json.begin_object();
    json.member("number", std::int64_t{report.number});
    json.member("description", report.description);
    json.member("module", report.module);
    json.member("member", report.member);
    json.member("line", std::int64_t{report.line});
    json.member("formula_cell", report.formula_cell);
    json.member("host_call", report.host_call);
    json.end_object();
  }
  json.end_array();
}

void write_drill(const Arguments& arguments, Drill& drill, const OpenFailures& failures,
                 const Reports& reports, Progress& progress) {
  DrillDown& engine = drill.engine();
  JsonWriter json(stdout);
  json.begin_object();
  json.member("operation", name_of(arguments.operation));
  json.key("start");
  write_part(json, *engine.StartModelPart());
  if (arguments.operation == Operation::tree)
    write_tree(json, engine.StartModelPart(), progress);
  else if (arguments.operation == Operation::inputs)
    write_list(json, "InputCells", engine.InputCells(), progress);
  else
    write_list(json, "ErrorCells", engine.ErrorCells(), progress);
  json.member("ExceededMaxItems", engine.ExceededMaxItems());
  json.key("BooksOpened");
  write_books(json, *engine.BooksOpened(), failures);
  json.key("BooksNotOpened");
  write_books(json, *engine.BooksNotOpened(), failures);
  write_reports(json, reports);
  json.end_object();
  json.finish();
}

void write_item(const Ref<ModelPart>& part, const Reports& reports) {
  JsonWriter json(stdout);
  json.begin_object();
  json.member("operation", name_of(Operation::part));
  json.key("start");
  write_part(json, *part);
  write_reports(json, reports);
  json.end_object();
  json.finish();
}

void write_book_links(const std::vector<LinkState>& links, const Reports& reports) {
  JsonWriter json(stdout);
  json.begin_object();
  json.member("operation", name_of(Operation::links));
  write_links(json, links);
  write_reports(json, reports);
  json.end_object();
  json.finish();
}

}  // namespace qto::cli
