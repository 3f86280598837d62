#include "cli/answer/answer_text.hpp"

#include <fmt/format.h>

#include "cli/answer/list_text.hpp"
#include "cli/answer/tree_text.hpp"
#include "cli/output/part_text.hpp"

namespace qto::cli {
namespace {

/// "1 cell", "3 cells"
std::string counted(std::size_t count, std::string_view what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string headline(ModelPart& part) {
  const PartText text = describe(part, part.WorkBookName(), false);
  std::string line = text.address;
  if (!text.title.empty()) line += "  " + text.title;
  if (!text.formula.empty()) line += "  " + text.formula;
  if (!text.value.empty()) line += (text.formula.empty() ? "  " : " → ") + text.value;
  return line;
}

void print_whole_tree(const Arguments& arguments, Drill& drill, Progress& progress) {
  const auto& start = drill.engine().StartModelPart();
  const TreeCounts counts = print_tree(stdout, start, arguments.full, progress);
  fmt::print("\n{}, {}, {}\n", counted(counts.formulas, "formula"),
             counted(counts.others, "other item"), counted(counts.levels, "level"));
}

void print_found(const Arguments& arguments, DrillDown& engine, const Ref<ModelParts>& found,
                 Progress& progress) {
  const auto& start = engine.StartModelPart();
  const bool inputs = arguments.operation == Operation::inputs;
  fmt::print("{} {}\n\n", inputs ? "Inputs of" : "The error of", headline(*start));
  print_list(stdout, found, start->WorkBookName(), arguments.full, progress);
  const auto count = static_cast<std::size_t>(found->Count());
  fmt::print("\n{}\n",
             inputs ? counted(count, "input") : counted(count, "origin") + " of the error");
}

/// The engine gives a start without errors below it as its own origin, error or not.
bool nothing_to_trace(DrillDown& engine) {
  const auto& start = engine.StartModelPart();
  const auto& found = engine.ErrorCells();
  return !start->HasError() && found->Count() == 1 && found->Item(1) == start;
}

}  // namespace

void print_drill(const Arguments& arguments, Drill& drill, const OpenFailures& failures,
                 Progress& progress) {
  DrillDown& engine = drill.engine();
  if (arguments.operation == Operation::tree)
    print_whole_tree(arguments, drill, progress);
  else if (arguments.operation == Operation::inputs)
    print_found(arguments, engine, engine.InputCells(), progress);
  else if (nothing_to_trace(engine))
    fmt::print("{}\n\nIt shows no error, nor does anything that feeds it directly.\n",
               headline(*engine.StartModelPart()));
  else
    print_found(arguments, engine, engine.ErrorCells(), progress);
  if (engine.ExceededMaxItems() && !drill.interrupted())
    fmt::print("Stopped after {} (--max-items): there may be more.\n",
               counted(static_cast<std::size_t>(arguments.max_items), "item"));
  fmt::print("{}", describe_books(*engine.BooksOpened(), *engine.BooksNotOpened(), failures));
}

namespace {

void print_field(std::string_view name, const std::string& value) {
  if (!value.empty()) fmt::print("{:<10}{}\n", name, one_line(value));
}

const char* constants_in(const ModelPart& part) {
  switch (part.FormulaContainsConstant()) {
    case qtoFormulaContainsConstant:
      return "written in the formula";
    case qtoFormulaContainsConstZeroOrOne:
      return "written in the formula, 0 or 1 only";
    case qtoNoConstantInFormula:
      break;
  }
  return "";
}

void print_rows(const VariantArray& values) {
  std::size_t empty = 0;
  for (const Variant& value : values.items()) empty += value.is_empty();
  fmt::print("{:<10}{} rows, {} columns, {} of the cells empty\n", "Values", values.rows(),
             values.columns(), empty);
}

/// The value itself where the cell shows it rounded or as a date.
void print_value(const ModelPart& part, const std::string& shown) {
  std::string exact;
  if (const auto* number = part.value().get_if<double>()) exact = fmt::format("{}", *number);
  if (const auto* date = part.value().get_if<Date>()) exact = fmt::format("day {}", date->serial);
  print_field("Value", exact.empty() ? shown : exact);
  if (!exact.empty() && exact != shown) print_field("Shown as", shown);
}

}  // namespace

void print_item(const Ref<ModelPart>& part) {
  const PartText text = describe(*part, part->WorkBookName(), true);
  print_field("Address", text.address);
  print_field("Book", part->WorkBookFullName());
  print_field("Kind", std::string(part->ObjectType()));
  print_field("Title", text.title);
  print_field("Formula", text.formula);
  if (!text.formula.empty() && part->Formula() != text.formula && part->Formula().starts_with('='))
    print_field("", "that is " + part->Formula());
  print_field("Constants", constants_in(*part));
  if (part->value().is_array())
    print_rows(part->value().array());
  else
    print_value(*part, text.value);
}

}  // namespace qto::cli
