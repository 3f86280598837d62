#include "cli/answer/answer_text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <vector>

#include "cli/answer/tree_text.hpp"
#include "cli/output/cell_run.hpp"
#include "cli/output/part_text.hpp"

namespace qto::cli {
namespace {

/// The columns are as wide as the first lines need; a list may be too long to be read twice.
constexpr std::size_t lines_measured = 1000;
constexpr std::size_t widest_column = 40;

struct Widths {
  std::size_t address = 0;
  std::size_t title = 0;
  std::size_t value = 0;

  void take(const PartText& text) {
    const auto widen = [](std::size_t& width, std::string_view field) {
      width = std::max(width, std::min(letters(field), widest_column));
    };
    widen(address, text.address);
    widen(title, text.title);
    widen(value, text.value);
  }
};

void print_line(std::FILE* out, const PartText& text, const Widths& widths) {
  std::string line;
  std::size_t column = 0;
  const auto put = [&](std::string_view field, std::size_t width) {
    line += field;
    column += width + 2;
    pad(line, std::max(column, letters(line) + 2));
  };
  put(text.address, widths.address);
  if (widths.title > 0) put(text.title, widths.title);
  put(text.value, widths.value);
  line += text.formula;
  line.erase(line.find_last_not_of(' ') + 1);
  fmt::print(out, "{}\n", line);
}

/// Whole columns are full of cells that hold nothing; a line says so for all of a block.
PartText describe_empty(ModelPart& first, const CellRun& run, const std::string& home_book) {
  PartText text;
  text.address = readable_address(first, home_book, address_of(run.block));
  text.value = counted(run.cells, "empty cell");
  return text;
}

/// A table of address, title, value and formula, one part a line. Gives the number of empty cells.
std::size_t print_list(std::FILE* out, const Ref<ModelParts>& parts, const std::string& home_book,
                       bool full, Progress& progress) {
  std::vector<ModelPart*> items;
  items.reserve(static_cast<std::size_t>(parts->Count()));
  parts->for_each([&items](ModelPart& part) { items.push_back(&part); });
  std::vector<PartText> head;
  std::size_t empty = 0;
  Widths widths;
  for (std::span<ModelPart* const> rest(items); !rest.empty();) {
    const CellRun run = full ? CellRun{} : empty_run_at_front(rest);
    const std::size_t taken = std::max<std::size_t>(run.cells, 1);
    const PartText text =
        run.cells ? describe_empty(*rest[0], run, home_book) : describe(*rest[0], home_book, full);
    if (run.cells || text.value == no_content) empty += taken;
    rest = rest.subspan(taken);
    progress.count(taken);
    if (head.size() < lines_measured) {
      head.push_back(text);
      widths.take(text);
      if (head.size() < lines_measured && !rest.empty()) continue;
      for (const PartText& first : head) print_line(out, first, widths);
    } else {
      print_line(out, text, widths);
    }
  }
  return empty;
}

std::string headline(ModelPart& part) {
  const PartText text = describe(part, part.WorkBookName(), false);
  std::string line = text.address;
  if (!text.title.empty()) line += "  " + text.title;
  if (!text.formula.empty()) line += "  " + text.formula;
  if (!text.value.empty()) line += (text.formula.empty() ? "  " : " → ") + text.value;
  return line;
}

bool reads_exactly(const Arguments& arguments) {
  return arguments.drill->Reading() == qtoReadExact;
}

/// Parts of the drill with their remarks, one line each.
void print_remarks(const Ref<ModelParts>& parts, std::string_view heading,
                   const std::string& home_book, bool full) {
  constexpr std::int32_t most_lines = 20;
  const std::int32_t count = parts ? parts->Count() : 0;
  if (count == 0) return;
  fmt::print("\n{}\n", heading);
  std::int32_t printed = 0;
  ModelParts::Pass pass(parts);
  while (ModelPart* part = pass.next()) {
    if (!full && printed == most_lines) break;
    ++printed;
    fmt::print("  {}  {}\n", readable_address(*part, home_book), one_line(part->DrillRemark()));
  }
  if (printed < count) fmt::print("  … and {} more (--full lists all)\n", count - printed);
}

void print_whole_tree(const Arguments& arguments, Drill& drill, Progress& progress) {
  const auto& start = drill.engine().StartModelPart();
  const TreeCounts counts = print_tree(stdout, start, arguments.full,
                                       arguments.depth > 0 && reads_exactly(arguments), progress);
  fmt::print("\n{}, {}, {}\n", counted(counts.formulas, "formula"),
             counted(counts.others, "other item"), counted(counts.levels, "level"));
}

void print_found(const Arguments& arguments, DrillDown& engine, const Ref<ModelParts>& found,
                 Progress& progress) {
  const auto& start = engine.StartModelPart();
  const bool inputs = arguments.operation == Operation::inputs;
  fmt::print("{} {}\n\n", inputs ? "Inputs of" : "The error of", headline(*start));
  const std::size_t empty =
      print_list(stdout, found, start->WorkBookName(), arguments.full, progress);
  const auto count = static_cast<std::size_t>(found->Count());
  if (!inputs) return fmt::print("\n{} of the error\n", counted(count, "origin"));
  fmt::print("\n{}", counted(count - empty, "input"));
  if (empty > 0) fmt::print(" and {}", counted(empty, "empty cell"));
  fmt::print("\n");
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
  const std::string home = engine.StartModelPart()->WorkBookName();
  print_remarks(engine.Circles(), "Circles of references, cut where they close:", home,
                arguments.full);
  print_remarks(engine.OpaqueCells(),
                "The answer ends at formulas that read what they do not show:", home,
                arguments.full);
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
