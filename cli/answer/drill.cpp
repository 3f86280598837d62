#include "cli/answer/drill.hpp"

#include "cli/terminal/interrupt.hpp"
#include "qto/automation/error.hpp"

namespace qto::cli {

Drill::Drill(const Arguments& arguments, Progress& progress)
    : arguments_(arguments), progress_(progress), choices_(arguments, progress) {
  engine_->putref_DrillOptions(arguments.drill);
  engine_->put_IgnoreConstantIfZeroOrOne(arguments.ignore_zero_one);
  engine_->put_MaximumDepth(arguments.depth);
  engine_->put_MaxItems(arguments.max_items);
  subscribe();
}

void Drill::subscribe() {
  engine_->BeforeGetPrecedents.add([this](Ref<ModelPart>&, bool&) {
    progress_.count_one();
    if (interrupted_ || !Interrupt::raised()) return;
    // From now on any item is one too many: the walk ends in good order.
    interrupted_ = true;
    engine_->put_MaxItems(1);
  });
  engine_->AskToOpenBook.add([this](Ref<ModelPart>& unknown, bool& choice) {
    choice = choices_.opens(unknown->WorkBookFullName());
  });
  engine_->AskForPassword.add([this](Ref<ModelPart>& unknown, std::string& password) {
    password = choices_.password(unknown->WorkBookName());
  });
  // The host would refuse it anyway, after a question for a password.
  engine_->BeforeInternetAccess.add(
      [](const std::string&, const std::string&, bool& cancel) { cancel = true; });
}

void Drill::run(const Ref<Object>& start) {
  const Interrupt listening;
  engine_->putref_StartUnderlyingObject(start);
  if (arguments_.operation == Operation::inputs)
    engine_->FindInputs();
  else if (arguments_.operation == Operation::errors)
    engine_->TraceError();
  else
    engine_->DrillHere();
  // Also when it came with the last item, at a question that stayed without an answer.
  interrupted_ = Interrupt::raised();
}

void parse_only(const Ref<ModelPart>& part) {
  const auto engine = make_ref<DrillDown>();
  const auto options = make_ref<DrillOptions>();
  options->put_Reading(qtoReadExact);
  engine->putref_DrillOptions(options);
  engine->put_MaximumDepth(1);
  engine->AskToOpenBook.add([](Ref<ModelPart>&, bool& choice) { choice = false; });
  try {
    engine->putref_StartUnderlyingObject(part);
    engine->DrillHere();
  } catch (const AutomationError&) {
    // A formula that cannot be parsed can still be shown.
  }
}

}  // namespace qto::cli
