// Evaluates formulas that stand alone and compares with the values that were cached with them.
// Usage: run_cases CASES.jsonl [--list] [--function NAME] [--books FOLDER]
// A case is a line of JSON: f formula, at cell, cells values by address, names, want value,
// array block of an array formula, date1904, fn functions. A case with "book" is evaluated over the
// values that this workbook of the folder remembers.

#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "qto/hosts/embedded/evaluate/evaluator.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"
#include "qto/hosts/embedded/xlsx/open_workbook.hpp"
#include "tests/conformance/comparing.hpp"

namespace {

using nlohmann::json;
using namespace qto;
using namespace qto::embedded;
using namespace qto::embedded::conformance;

ErrorValue error_of(const std::string& text) {
  for (const ErrorValue error : {ErrorValue::null, ErrorValue::div0, ErrorValue::value,
                                 ErrorValue::ref, ErrorValue::name, ErrorValue::num, ErrorValue::na,
                                 ErrorValue::getting_data, ErrorValue::spill, ErrorValue::calc})
    if (error_text(error) == text) return error;
  return ErrorValue::value;
}

Variant value_of(const json& value) {
  if (value.is_number()) return value.get<double>();
  if (value.is_boolean()) return value.get<bool>();
  if (value.is_string()) return value.get<std::string>();
  if (value.is_object()) return error_of(value["e"].get<std::string>());
  return {};
}

/// Cuts "'My sheet'!B7" in two.
std::pair<std::string, std::string> split(const std::string& address) {
  const std::size_t mark = address.rfind('!');
  std::string sheet = address.substr(0, mark);
  if (sheet.starts_with('\'')) {
    sheet = sheet.substr(1, sheet.size() - 2);
    for (std::size_t at = sheet.find("''"); at != std::string::npos; at = sheet.find("''", at + 1))
      sheet.erase(at, 1);
  }
  return {sheet, address.substr(mark + 1)};
}

Sheet& sheet_named(Book& book, const std::string& name) {
  Sheet* sheet = book.find_sheet(name);
  return sheet ? *sheet : book.add_sheet(name);
}

/// Sheets that a formula names are there, even when all their cells are empty.
void add_sheets(Book& book, const CompiledFormula& formula) {
  if (!formula.tree()) return;
  for (const formula::SheetQualifier& qualifier : formula.tree()->qualifiers)
    if (qualifier.external == 0 && qualifier.book.empty() && !qualifier.sheet.empty())
      sheet_named(book, qualifier.sheet);
}

Variant evaluate(const json& c, Sheet& sheet, CellPos pos, const CompiledFormula& formula) {
  StillWorld world;
  Evaluator evaluator(world, functions::registry());
  const bool array = c.contains("array") && c["array"] != false;
  const Operand result =
      evaluator.evaluate(formula, sheet, pos, array ? EvaluationMode::array : EvaluationMode::cell);
  return view_of(*result.value()).to_variant();
}

std::shared_ptr<const CompiledFormula> formula_of(const json& c, CellPos pos) {
  return CompiledFormula::compile(c["f"].get<std::string>().substr(1), pos);
}

/// In a book made for the case.
Variant evaluate_alone(const json& c) {
  Book book;
  book.date1904 = c.value("date1904", false);
  const auto [sheet_name, at] = split(c["at"]);
  Sheet& sheet = sheet_named(book, sheet_name);
  for (const auto& [address, value] : c["cells"].items()) {
    const auto [other, position] = split(address);
    if (const auto cell = parse_cell(position))
      book.store(sheet_named(book, other).cells.touch(cell->pos), value_of(value));
  }
  if (c.contains("names"))
    for (const auto& [name, text] : c["names"].items()) {
      const auto formula = CompiledFormula::compile(text.get<std::string>(), CellPos{});
      add_sheets(book, *formula);
      book.names.add({name, nullptr, false, formula});
    }
  const CellPos pos = parse_cell(at)->pos;
  const auto formula = formula_of(c, pos);
  add_sheets(book, *formula);
  return evaluate(c, sheet, pos, *formula);
}

/// The workbooks of a folder, each opened once.
class Books {
 public:
  explicit Books(std::string folder) : folder_(std::move(folder)) {}
  Book& book(const std::string& name) {
    auto& slot = open_[name];
    if (!slot) slot = open_workbook(folder_ + '/' + name);
    return *slot;
  }

 private:
  std::string folder_;
  std::map<std::string, std::unique_ptr<Book>> open_;
};

Variant evaluate_in_book(const json& c, Book& book) {
  const auto [sheet_name, at] = split(c["at"]);
  Sheet* sheet = book.find_sheet(sheet_name);
  if (!sheet) throw std::runtime_error("no sheet " + sheet_name);
  const CellPos pos = parse_cell(at)->pos;
  return evaluate(c, *sheet, pos, *formula_of(c, pos));
}

struct Tally {
  int passed = 0;
  int failed = 0;
  std::map<std::string, std::pair<int, int>> by_function;  // passed, failed
  std::map<std::string, int> unknown;
};

void count(Tally& tally, const json& c, bool passed) {
  ++(passed ? tally.passed : tally.failed);
  std::set<std::string> functions;
  const auto formula = formula_of(c, {1, 1});
  if (c.contains("fn"))
    for (const auto& function : c["fn"]) functions.insert(function.get<std::string>());
  else if (formula->tree())
    functions = functions_of(*formula->tree());
  if (functions.empty()) functions.insert("(operators)");
  for (const auto& function : functions) {
    auto& row = tally.by_function[function];
    ++(passed ? row.first : row.second);
    if (function.front() != '(' && !functions::registry().find(function)) ++tally.unknown[function];
  }
}

void print(const Tally& tally) {
  std::cout << "\nfunctions with failures (failed of all):\n";
  for (const auto& [function, row] : tally.by_function)
    if (row.second > 0 && !tally.unknown.contains(function))
      std::cout << "  " << function << "  " << row.second << " of " << row.first + row.second
                << '\n';
  std::cout << "unknown functions (cases):";
  for (const auto& [function, cases] : tally.unknown)
    std::cout << ' ' << function << '(' << cases << ')';
  std::cout << "\npassed " << tally.passed << ", failed " << tally.failed << '\n';
}

struct Options {
  std::string cases, books, only;
  bool list = false;
};

Options read_options(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--list")
      options.list = true;
    else if (argument == "--function" && i + 1 < argc)
      options.only = argv[++i];
    else if (argument == "--books" && i + 1 < argc)
      options.books = argv[++i];
    else
      options.cases = argument;
  }
  return options;
}

std::string label(const json& c) {
  if (c.contains("id")) return c["id"].get<std::string>();
  return c["book"].get<std::string>() + ' ' + c["at"].get<std::string>();
}

}  // namespace

int main(int argc, char** argv) {
  const Options options = read_options(argc, argv);
  std::ifstream file(options.cases);
  if (options.cases.empty() || !file) {
    std::cerr << "usage: run_cases CASES.jsonl [--list] [--function NAME] [--books FOLDER]\n";
    return 1;
  }
  Books books(options.books);
  Tally tally;
  for (std::string line; std::getline(file, line);) {
    const json c = json::parse(line);
    if (!options.only.empty() &&
        std::find(c["fn"].begin(), c["fn"].end(), options.only) == c["fn"].end())
      continue;
    const Variant got =
        c.contains("book") ? evaluate_in_book(c, books.book(c["book"])) : evaluate_alone(c);
    const Variant want = value_of(c["want"]);
    const bool passed = same_value(view_of(got), view_of(want));
    count(tally, c, passed);
    if (options.list && !passed)
      std::cout << label(c) << " [" << c.value("lo", "") << "] "
                << c["f"].get<std::string>().substr(0, 200) << "  got " << shown(view_of(got))
                << "  want " << shown(view_of(want)) << (c.contains("array") ? "  array" : "")
                << '\n';
  }
  print(tally);
  return tally.failed == 0 ? 0 : 1;
}
