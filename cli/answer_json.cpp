#include "cli/answer_json.hpp"

#include "cli/json_writer.hpp"
#include "cli/part_json.hpp"
#include "cli/tree_json.hpp"
#include "qto/links/link_list.hpp"
#include "qto/links/path_helpers.hpp"

namespace qto::cli {
namespace {

void write_reports(JsonWriter& json, const Reports& reports) {
  json.key("reports");
  json.begin_array();
  for (const auto& report : reports.kept()) {
    json.begin_object();
    json.member("number", std::int64_t{report.number});
    json.member("description", report.description);
    json.member("module", report.module);
    json.member("member", report.member);
    json.end_object();
  }
  json.end_array();
}

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

void write_drill(const Arguments& arguments, Drill& drill, const Reports& reports,
                 Progress& progress) {
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
  write_books(json, *engine.BooksOpened());
  json.key("BooksNotOpened");
  write_books(json, *engine.BooksNotOpened());
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

void write_links(const Ref<host::Workbook>& book, const Reports& reports) {
  const auto links = make_ref<LinkList>();
  links->putref_Workbook(book);
  JsonWriter json(stdout);
  json.begin_object();
  json.member("operation", name_of(Operation::links));
  json.key("Links");
  json.begin_array();
  for (std::int32_t i = 1; i <= links->CountLinks(); ++i) {
    const std::string link = links->Links(i);
    json.begin_object();
    json.member("FullNameWithPath", link);
    json.member("Exists", !Main::IsURL(link) && Main::FileExists(link));
    json.end_object();
  }
  json.end_array();
  write_reports(json, reports);
  json.end_object();
  json.finish();
}

}  // namespace qto::cli
