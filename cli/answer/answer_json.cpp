#include "cli/answer/answer_json.hpp"

#include <deque>
#include <vector>

#include "cli/output/json_writer.hpp"
#include "cli/output/part_json.hpp"
#include "cli/output/part_set.hpp"
#include "cli/output/part_text.hpp"
#include "qto/model/model_parts.hpp"

namespace qto::cli {
namespace {

/// The parts of a tree, each once; the tree holds them.
std::vector<ModelPart*> parts_in_order(ModelPart& start) {
  std::vector<ModelPart*> order;
  PartSet met(start);
  std::deque<ModelParts::Pass> stack;  // trees may be a million levels deep
  const auto meet = [&](ModelPart& part) {
    if (!met.insert(&part)) return;
    order.push_back(&part);
    if (part.DirectPrecedents()) stack.emplace_back(part.DirectPrecedents());
  };
  meet(start);
  while (!stack.empty()) {
    ModelPart* next = stack.back().next();
    if (next)
      meet(*next);
    else
      stack.pop_back();
  }
  return order;
}

/// As part.UniqueKey(), which would have the part keep its text.
std::string key_of(ModelPart& part) {
  if (part.ObjectType() == "Range" && !part.IsUnknown()) return part.AddressLong(qtoaddressPath);
  return part.UniqueKey();
}

/// Every part once, the start first, the others in the order in which a depth-first walk meets
/// them.
void write_tree(JsonWriter& json, const Ref<ModelPart>& start, Progress& progress) {
  const auto parts = parts_in_order(*start);
  json.key("parts");
  json.begin_array();
  for (ModelPart* part : parts) {
    write_part(json, *part);
    progress.count_one();
  }
  json.end_array();
  json.key("precedents");
  json.begin_object();
  for (ModelPart* part : parts) {
    const auto list = part->DirectPrecedents();
    if (!list) continue;
    json.key(key_of(*part));
    json.begin_array();
    list->for_each([&json](ModelPart& precedent) { json.text(key_of(precedent)); });
    json.end_array();
  }
  json.end_object();
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

/// The keys of parts with what is to be known about them.
void write_remarks(JsonWriter& json, std::string_view name, const Ref<ModelParts>& parts) {
  json.key(name);
  json.begin_array();
  if (parts)
    parts->for_each([&](ModelPart& part) {
      json.begin_object();
      json.member("UniqueKey", key_of(part));
      json.member("DrillRemark", part.DrillRemark());
      json.end_object();
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
  write_remarks(json, "OpaqueCells", engine.OpaqueCells());
  write_remarks(json, "Circles", engine.Circles());
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
