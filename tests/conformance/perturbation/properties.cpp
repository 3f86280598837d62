#include "tests/conformance/perturbation/properties.hpp"

#include <functional>
#include <set>
#include <unordered_set>

#include "qto/automation/error.hpp"
#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"

namespace qto::embedded::conformance {
namespace {

using Lines = std::vector<std::string>;

Ref<DrillDown> drill_from(const Ref<host::Range>& start) {
  auto drill = make_ref<DrillDown>();
  auto options = make_ref<DrillOptions>();
  options->put_Reading(qtoReadExact);
  drill->putref_DrillOptions(options);
  drill->AskToOpenBook.add([](Ref<ModelPart>&, bool& open) { open = false; });
  drill->putref_StartUnderlyingObject(start);
  return drill;
}

Lines keys_of(const Ref<ModelParts>& parts) {
  Lines keys;
  if (parts) parts->for_each([&](ModelPart& part) { keys.push_back(part.UniqueKey()); });
  return keys;
}

/// The parts of a drill in the order in which it asked for their precedents.
Lines walk_of(const Ref<host::Range>& start) {
  Lines walk;
  const auto drill = drill_from(start);
  drill->BeforeGetPrecedents.add(
      [&](Ref<ModelPart>& part, bool&) { walk.push_back(part->UniqueKey()); });
  drill->DrillHere();
  return walk;
}

/// The same by recursion over the lists of the finished tree.
Lines recursive_walk(const Ref<host::Range>& start) {
  const auto drill = drill_from(start);
  drill->DrillHere();
  Lines walk;
  std::unordered_set<std::string> seen;
  const std::function<void(ModelPart&)> enter = [&](ModelPart& part) {
    // Nobody asks for the precedents of what is no formula.
    if (part.ObjectType() != "Range" || part.Formula().starts_with('='))
      walk.push_back(part.UniqueKey());
    if (!part.DirectPrecedents()) return;
    part.DirectPrecedents()->for_each([&](ModelPart& precedent) {
      if (seen.insert(precedent.UniqueKey()).second && !precedent.IsUnknown()) enter(precedent);
    });
  };
  seen.insert(drill->StartModelPart()->UniqueKey());
  enter(*drill->StartModelPart());
  return walk;
}

/// Cells of the tree whose lists are not those of a drill of one level that starts there.
void check_lists(const Ref<host::Range>& start, Lines& broken) {
  const auto drill = drill_from(start);
  drill->DrillHere();
  std::set<ModelPart*> seen;
  const std::function<void(ModelPart&)> enter = [&](ModelPart& part) {
    if (!seen.insert(&part).second || !part.DirectPrecedents()) return;
    if (part.ObjectType() == "Range") {
      const auto alone =
          drill_from(Ref<host::Range>(static_cast<host::Range*>(part.UnderlyingObject().get())));
      alone->put_MaximumDepth(1);
      alone->DrillHere();
      if (keys_of(alone->StartModelPart()->DirectPrecedents()) != keys_of(part.DirectPrecedents()))
        broken.push_back("another list in a drill of one level: " + part.UniqueKey());
    }
    part.DirectPrecedents()->for_each(enter);
  };
  enter(*drill->StartModelPart());
}

bool is_input(ModelPart& part) {
  if (part.IsUnknown() || part.FormulaContainsConstant() != qtoNoConstantInFormula) return true;
  return !part.DirectPrecedents() && (part.HasConstant() || part.ObjectType() != "Range");
}

std::set<std::string> leaves_of(const Ref<host::Range>& start) {
  const auto drill = drill_from(start);
  drill->DrillHere();
  std::set<std::string> leaves;
  std::set<ModelPart*> seen;
  const std::function<void(ModelPart&)> enter = [&](ModelPart& part) {
    if (!seen.insert(&part).second) return;
    if (is_input(part)) leaves.insert(part.UniqueKey());
    if (part.DirectPrecedents()) part.DirectPrecedents()->for_each(enter);
  };
  enter(*drill->StartModelPart());
  return leaves;
}

std::set<std::string> inputs_of(const Ref<host::Range>& start) {
  const auto drill = drill_from(start);
  drill->FindInputs();
  const Lines keys = keys_of(drill->InputCells());
  return {keys.begin(), keys.end()};
}

std::string difference(const std::set<std::string>& inputs, const std::set<std::string>& leaves) {
  std::string out;
  for (const std::string& key : inputs)
    if (!leaves.contains(key)) out += "; no leaf: " + key;
  for (const std::string& key : leaves)
    if (!inputs.contains(key)) out += "; no input: " + key;
  return out.substr(0, 300);
}

void check(const Ref<host::Range>& start, Lines& broken) {
  const Lines walk = walk_of(start);
  if (walk != walk_of(start)) broken.push_back("another walk the second time");
  if (walk != recursive_walk(start)) broken.push_back("no recursive walk");
  check_lists(start, broken);
  const auto inputs = inputs_of(start);
  const auto leaves = leaves_of(start);
  if (inputs != leaves) broken.push_back("inputs are not leaves" + difference(inputs, leaves));
}

}  // namespace

std::vector<std::string> broken_properties(const GeneratedBook& book) {
  std::vector<std::string> all;
  for (const GeneratedBook::FormulaCell& cell : book.formulas()) {
    const Ref<host::Range> start =
        book.workbook()->Worksheets(cell.sheet->name)->Cells(cell.at.row, cell.at.column);
    Lines broken;
    try {
      check(start, broken);
    } catch (const std::exception& failure) {
      broken.push_back(std::string("refused: ") + failure.what());
    }
    for (const std::string& what : broken)
      all.push_back(address_of(cell.at) + " =" + cell.formula.text() + ": " + what);
  }
  return all;
}

}  // namespace qto::embedded::conformance
