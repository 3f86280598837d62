#include "cli/answer/tree_json.hpp"

#include <deque>
#include <vector>

#include "cli/output/displayed.hpp"
#include "cli/output/part_json.hpp"
#include "cli/output/part_set.hpp"
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

}  // namespace

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

}  // namespace qto::cli
