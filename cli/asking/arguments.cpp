#include "cli/asking/arguments.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "cli/asking/build_info.hpp"
#include "cli/asking/wrong_usage.hpp"
#include "cli/terminal/terminal.hpp"
#include "qto/automation/text.hpp"

namespace qto::cli {
namespace {

constexpr const char* footer_text =
    "START and ITEM:\n"
    "  Sheet1!B7  'My sheet'!B7  B7 (first sheet)  Rate  Sheet1!Rate (defined names)\n"
    "  'Report(Chart 1)!Sales' (a series of an embedded chart)  Chart1!Sales (of a chart sheet)\n"
    "\n"
    "Examples:\n"
    "  qto tree plan.xlsx 'Summary!C7' --depth 2\n"
    "  qto inputs plan.xlsx 'Summary!C7' --json\n"
    "  qto errors plan.xlsx 'Summary!B15'\n"
    "\n"
    "Exit status: 0 done, 1 wrong usage, 2 refused (START holds no formula, circular\n"
    "references), 3 done but partial, 4 the book could not be read.\n"
    "'qto help COMMAND' lists the options of a command.";

template <class Value>
struct Choice {
  const char* name;
  Value value;
};

/// An option that takes one of a few words.
template <class Value>
void add_choice(CLI::App& command, const std::string& option, std::vector<Choice<Value>> choices,
                std::function<void(Value)> take, const std::string& help) {
  std::string words;
  for (const auto& choice : choices) words += (words.empty() ? "" : "|") + std::string(choice.name);
  command
      .add_option_function<std::string>(
          option,
          [choices, take, option, words](const std::string& given) {
            for (const auto& choice : choices)
              if (given == choice.name) return take(choice.value);
            throw CLI::ValidationError(option, "'" + given + "' is none of " + words);
          },
          help)
      ->option_text(words);
}

std::vector<Choice<qtoDrillType>> section_choices() {
  return {
      {"all", qtoDrillAll}, {"used", qtodrillusedsection}, {"condition", qtodrillconditionandused}};
}

std::vector<Choice<qtoDrillType>> target_choices() {
  return {{"real", qtoDrillIndirectReal},
          {"apparent", qtoDrillIndirectApparent},
          {"both", qtodrillindirectboth}};
}

void hide(DrillOptions& drill, const std::vector<std::string>& kinds) {
  for (const std::string& kind : kinds) {
    if (kind == "blanks")
      drill.put_ShowBlanks(false);
    else if (kind == "zeros")
      drill.put_ShowZeros(false);
    else if (kind == "dates")
      drill.put_ShowDates(false);
    else
      throw CLI::ValidationError("--hide", "'" + kind + "' is none of blanks, zeros, dates");
  }
}

/// A whole number from 1 that the engine can count to.
CLI::Validator positive() {
  return CLI::Validator(
      [](const std::string& given) -> std::string {
        std::int32_t number = 0;
        if (CLI::detail::lexical_cast(given, number) && number > 0) return "";
        return "'" + given + "' is no number from 1";
      },
      "", "positive");
}

/// A text before "=" is a book's name only when it looks like one: passwords hold "=" too.
Password read_password(const std::string& given) {
  const std::size_t sign = given.find('=');
  if (sign == std::string::npos) return {"", given};
  const std::string book = given.substr(0, sign);
  const std::size_t dot = book.rfind('.');
  if (dot == std::string::npos || !book.substr(dot).starts_with(".xl")) return {"", given};
  return {book, given.substr(sign + 1)};
}

void add_book_options(CLI::App& command, Arguments& arguments) {
  command.add_option("BOOK", arguments.book, "the .xlsx or .xlsm file")
      ->required()
      ->option_text(" ");
  command
      .add_option_function<std::vector<std::string>>(
          "--password",
          [&](const std::vector<std::string>& given) {
            for (const std::string& text : given)
              arguments.passwords.push_back(read_password(text));
          },
          "password of an encrypted book (of the one named, or of any)")
      ->allow_extra_args(false)
      ->option_text("[BOOK=]TEXT");
  command.add_flag("--json", arguments.json, "one JSON object on standard output");
}

/// What opens the book, where more than the embedded host can answer.
void add_host_option(CLI::App& command, Arguments& arguments) {
  add_choice<HostChoice>(
      command, "--host",
      {{"embedded", HostChoice::embedded}, {"libreoffice", HostChoice::libreoffice}},
      [&arguments](HostChoice host) { arguments.host = host; },
      "what opens the books and evaluates: qto itself (.xlsx), or LibreOffice (also .ods, .xls, "
      ".xlsb, .csv)");
}

/// What helps to find out why an answer is not what was expected.
void add_diagnostic_options(CLI::App& command, Arguments& arguments) {
  add_choice<ReportPolicy>(
      command, "--reports", {{"ask", ReportPolicy::ask}, {"list", ReportPolicy::list}},
      [&arguments](ReportPolicy policy) { arguments.reports = policy; },
      "what happens at an error report: ask what to do (on a terminal), or go on and list it");
  command.add_option("--trace", arguments.trace_file, "write every call of the engine to a file")
      ->option_text("FILE");
  command
      .add_option("--trace-viewer", arguments.trace_viewer,
                  "send every call to a local socket or an open file descriptor")
      ->option_text("SOCKET|fd:N");
}

/// Choices among a special function's arguments. They are applied after --drill, which sets them
/// all, whatever the order on the command line.
struct SpecialFunctions {
  std::function<void(DrillOptions&)> level;
  std::vector<std::function<void(DrillOptions&)>> single;
};

void add_special_functions(CLI::App& command, SpecialFunctions& special) {
  add_choice<void (DrillOptions::*)()>(
      command, "--drill",
      {{"normal", &DrillOptions::ShowNormal},
       {"all", &DrillOptions::ShowAll},
       {"minimal", &DrillOptions::ShowMinimal}},
      [&](void (DrillOptions::*show)()) {
        special.level = [show](DrillOptions& drill) { (drill.*show)(); };
      },
      "every reference written (normal), also the targets of INDIRECT and OFFSET (all), or only "
      "what makes the present result (minimal)");
  add_choice<qtoReading>(
      command, "--reading", {{"exact", qtoReadExact}, {"written", qtoReadAsWritten}},
      [&special](qtoReading reading) {
        special.single.push_back([reading](DrillOptions& drill) { drill.put_Reading(reading); });
      },
      "formulas are read as structure (exact), or as text, token by token (written)");
  struct Row {
    const char* option;
    std::vector<Choice<qtoDrillType>> choices;
    void (DrillOptions::*put)(qtoDrillType);
    const char* help;
  };
  const Row rows[] = {
      {"--if", section_choices(), &DrillOptions::put_ParseIf, "arguments of IF that are followed"},
      {"--lookup", section_choices(), &DrillOptions::put_ParseLookup,
       "cells of VLOOKUP, HLOOKUP and LOOKUP that are followed"},
      {"--sumif",
       {{"all", qtoDrillAll},
        {"used", qtodrillusedsection},
        {"condition", qtodrillconditionandused}},
       &DrillOptions::put_ParseSumif,
       "cells of SUMIF that are followed"},
      {"--index",
       {{"all", qtoDrillAll}, {"used", qtodrillusedsection}},
       &DrillOptions::put_ParseIndex,
       "the whole range of INDEX or the cell that it picks"},
      {"--match",
       {{"all", qtoDrillAll}, {"condition", qtoDrillMatchCondition}},
       &DrillOptions::put_ParseMatch,
       "the whole range of MATCH or only what is looked for"},
      {"--indirect", target_choices(), &DrillOptions::put_ParseIndirect,
       "the cell that INDIRECT reaches, its arguments, or both"},
      {"--offset", target_choices(), &DrillOptions::put_ParseOffset, "the same for OFFSET"},
  };
  for (const Row& row : rows)
    add_choice<qtoDrillType>(
        command, row.option, row.choices,
        [&special, put = row.put](qtoDrillType type) {
          special.single.push_back([put, type](DrillOptions& drill) { (drill.*put)(type); });
        },
        row.help);
}

void add_link_options(CLI::App& command, Arguments& arguments, const std::string& open_help) {
  add_choice<OpenPolicy>(
      command, "--open",
      {{"ask", OpenPolicy::ask}, {"always", OpenPolicy::always}, {"never", OpenPolicy::never}},
      [&arguments](OpenPolicy policy) { arguments.open = policy; }, open_help);
  command.add_option("--folder", arguments.folders, "where else linked books are looked for")
      ->allow_extra_args(false)
      ->option_text("DIR");
}

void add_drill_options(CLI::App& command, Arguments& arguments, SpecialFunctions& special) {
  command.add_option("START", arguments.item, "a cell, a defined name or a chart's series")
      ->required()
      ->option_text(" ");
  add_special_functions(command, special);
  command
      .add_option_function<std::vector<std::string>>(
          "--hide",
          [&special](const std::vector<std::string>& kinds) {
            hide(*make_ref<DrillOptions>(), kinds);  // complains now
            special.single.push_back([kinds](DrillOptions& drill) { hide(drill, kinds); });
          },
          "precedents that are left out")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->option_text("blanks,zeros,dates");
  command.add_flag("--ignore-zero-one", arguments.ignore_zero_one,
                   "the constants 0 and 1 in a formula do not make it an input");
  command.add_option("--max-items", arguments.max_items, "stop after N cells")
      ->check(positive())
      ->option_text("N");
  add_link_options(
      command, arguments,
      "whether books that formulas link to are opened (ask on a terminal, else never)");
  command.add_flag("--full", arguments.full, "every cell on a line, formulas uncut");
}

/// "help COMMAND" says what "COMMAND --help" does, and "help" what "--help" does.
std::vector<std::string> with_help_as_option(std::vector<std::string> words) {
  if (words.size() < 2 || words[1] != "help") return words;
  words.erase(words.begin() + 1);
  words.resize(std::min<std::size_t>(words.size(), 2));
  words.push_back("--help");
  return words;
}

}  // namespace

std::optional<int> parse_arguments(const std::vector<std::string>& given, Arguments& arguments) {
  const auto words = with_help_as_option(given);
  CLI::App app(
      "Audits the formulas of a workbook: what feeds a cell, which input cells it rests "
      "on, and where an error in it comes from.",
      "qto");
  app.footer(footer_text);
  app.set_version_flag("--version", version_text());
  app.require_subcommand(1);
  app.allow_windows_style_options(false);  // "/" begins paths
  if (is_terminal(Stream::input) && is_terminal(Stream::errors)) {
    arguments.open = OpenPolicy::ask;
    arguments.reports = ReportPolicy::ask;
  }
  add_diagnostic_options(app, arguments);

  SpecialFunctions special;
  const auto add = [&](Operation operation, const char* help) -> CLI::App& {
    CLI::App* command = app.add_subcommand(name_of(operation), help);
    command->callback([&arguments, operation] { arguments.operation = operation; });
    command->footer("'qto --help' tells how START and ITEM are written.");
    add_book_options(*command, arguments);
    if (operation != Operation::links) add_host_option(*command, arguments);
    add_diagnostic_options(*command, arguments);
    return *command;
  };
  CLI::App& tree = add(Operation::tree, "What feeds START: the tree of its precedents");
  add_drill_options(tree, arguments, special);
  tree.add_option("--depth", arguments.depth, "levels of the tree; allows circular references")
      ->check(positive())
      ->option_text("N");
  add_drill_options(add(Operation::inputs, "The input cells that START rests on"), arguments,
                    special);
  add_drill_options(add(Operation::errors, "The cells where the error in START originates"),
                    arguments, special);
  add(Operation::part,
      "One item: addresses, title, formula, value, text; without one, what there is")
      .add_option("ITEM", arguments.item, "a cell, a range, a defined name or a chart's series")
      ->option_text(" ");
  CLI::App& show = add(Operation::show, "A picture of the cells around ITEM, or of its chart");
  show.add_option("ITEM", arguments.item, "a cell, a range, a name of cells or a chart's series")
      ->required()
      ->option_text(" ");
  show.add_flag("--unhide", arguments.unhide,
                "shows hidden rows, columns and sheets; --password lifts a sheet's protection");
  show.add_flag("--full", arguments.full, "the formula uncut");
  CLI::App& links =
      add(Operation::links, "The books that BOOK, or every book of a folder, links to");
  add_link_options(links, arguments, "whether they are opened to see if they can be (always)");
  links.get_option("BOOK")->description("the .xlsx or .xlsm file, or a folder of them");
  links.preparse_callback([&arguments](std::size_t) { arguments.open = OpenPolicy::always; });

  try {
    // Without the program's own name; taken from the back.
    std::vector<std::string> rest(words.begin() + (words.empty() ? 0 : 1), words.end());
    std::reverse(rest.begin(), rest.end());
    app.parse(std::move(rest));
  } catch (const CLI::ParseError& error) {
    return end_with(app, error, words);
  }
  arguments.drill->put_Reading(qtoReadExact);
  if (special.level) special.level(*arguments.drill);
  for (const auto& choose : special.single) choose(*arguments.drill);
  return std::nullopt;
}

const char* name_of(Operation operation) noexcept {
  static constexpr const char* names[] = {"tree", "inputs", "errors", "part", "links", "show"};
  return names[static_cast<int>(operation)];
}

std::string password_for(const Arguments& arguments, const std::string& book_name) {
  for (const Password& password : arguments.passwords)
    if (text::equal_fold(password.book, book_name)) return password.text;
  for (const Password& password : arguments.passwords)
    if (password.book.empty()) return password.text;
  return "";
}

}  // namespace qto::cli
