#include "qto/engine/drill_down.hpp"

#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/engine/memory_status.hpp"
#include "qto/engine/part_graph.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"
#include "qto/parser/parser.hpp"

namespace qto {

DrillDown::DrillDown()
    : context_(Main::context()),
      start_part_(make_ref<ModelPart>(context_)),
      parts_analysed_(make_ref<ModelParts>()),
      clsParser_(std::make_unique<Parser>(context_)),
      memory_baseline_(available_memory()) {
  Procedure proc("DrillDown", "Class_Initialize");
  release_lost_graphs();
  Main::reset_books();
  clsParser_->UnknownObjectFound.add(
      [this](Ref<ModelPart>& unknown, Ref<ModelParts>& list, std::int32_t& fatal_error) {
        clsParser_UnknownObjectFound(unknown, list, fatal_error);
      });
  clsParser_->OpaqueCallFound.add([this](Ref<ModelPart>& part) { add_to(*opaque_cells_, part); });
  clsParser_->ParserFoundDDEOLELink.add([this](const std::string& application,
                                               const std::string& document, const std::string& link,
                                               Ref<ModelPart>& part) {
    clsParser_ParserFoundDDEOLELink(application, document, link, part);
  });
}

DrillDown::~DrillDown() {
  // What this drill still holds must not keep a circle of parts alive.
  start_part_ = nullptr;
  start_object_ = nullptr;
  parts_analysed_ = input_cells_ = error_cells_ = opaque_cells_ = circles_ = nullptr;
  clsParser_.reset();
  release_lost_graphs();
}

void DrillDown::put_MaximumDepth(std::int32_t depth) {
  Procedure proc("DrillDown", "MaximumDepth[Let]");
  maximum_depth_ = non_negative(depth);
}

std::int32_t DrillDown::non_negative(std::int32_t value) {
  Procedure proc("DrillDown", "non_negative");
  if (!proc.step([&] {
        if (value < 0) throw AutomationError(ErrorNumber::out_of_range, true);
      }))
    return 0;
  return value;
}

void DrillDown::put_MaxItems(std::int32_t items) {
  Procedure proc("DrillDown", "MaxItems[Let]");
  if (items < 0) throw AutomationError(ErrorNumber::out_of_range);
  maximum_items_ = items;
  next_item_threshold_ = items;
}

void DrillDown::putref_DrillOptions(const Ref<qto::DrillOptions>& options) {
  Procedure proc("DrillDown", "DrillOptions[Set]");
  options_ = options;
  clsParser_->putref_ParseOptions(options);
}

void DrillDown::putref_StartUnderlyingObject(const Ref<Object>& object) {
  Procedure proc("DrillDown", "StartUnderlyingObject[Set]");
  if (!object) throw AutomationError(ErrorNumber::wrong_object);
  if (object->TypeName() == "ModelPart") return accept_part(ref_cast<ModelPart>(object));
  const auto host_object = ref_cast<host::HostObject>(object);
  if (!host_object) throw AutomationError(ErrorNumber::wrong_object);
  Ref<host::HostObject> owner = host_object;
  const bool found_owner = proc.step([&] {
    do owner = owner->Parent();
    while (owner && owner->TypeName() != "Workbook" && owner->TypeName() != "Application");
  });
  if (!found_owner) return;
  if (!owner || owner->TypeName() == "Application")
    throw AutomationError(ErrorNumber::wrong_object);
  start_workbook_ = ref_cast<host::Workbook>(owner);
  const std::string_view kind = object->TypeName();
  if (kind == "Range") {
    if (!proc.step([&] { check_range(ref_cast<host::Range>(object)); })) return;
  } else if (kind != "Series") {
    throw AutomationError(ErrorNumber::wrong_object);
  }
  if (!proc.step([&] { enter_context(host_object->Application()); })) return;
  start_object_ = object;
  start_part_ = make_ref<ModelPart>(context_);
  start_part_->Create(object, kind);
}

void DrillDown::accept_part(const Ref<ModelPart>& part) {
  Procedure proc("DrillDown", "StartUnderlyingObject[Set]");
  (void)proc.step([&] {
    const auto object = ref_cast<host::HostObject>(part->UnderlyingObject());
    if (!object) throw NumberedFailure(91, "the part has no object in an open workbook");
    enter_context(object->Application());
    start_part_ = part;
    start_part_->join(context_);
    start_object_ = part;
    start_workbook_ = part->Workbook();
  });
}

void DrillDown::enter_context(const Ref<host::Application>& application) {
  Main::set_shared_application(application);
  context_ = Main::context();
  clsParser_->set_context(context_);
}

host::Application& DrillDown::application() const {
  if (!context_->application()) throw NumberedFailure(91, "there is no spreadsheet application");
  return *context_->application();
}

void DrillDown::check_range(const Ref<host::Range>& range) {
  if (range->CellsCount() > 1) throw AutomationError(ErrorNumber::wrong_object);
  // The pivot test asks the application for intersections.
  if (Main::inpivottable(range).empty() && !range->HasFormula())
    throw AutomationError(ErrorNumber::no_formula);
}

}  // namespace qto
