// Evaluates formulas that stand alone and compares with the values that were cached with them.
// Usage: run_cases CASES.jsonl [--list] [--function NAME]
// A case is a line of JSON: f formula, at cell, cells values by address, names, want value,
// array block of an array formula, date1904, fn functions.

#include <cmath>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/evaluator.hpp"
#include "qto/hosts/embedded/evaluate/value_view.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"

namespace {

using nlohmann::json;
using namespace qto;
using namespace qto::embedded;

class StillWorld : public Environment {
 public:
  bool ready(const Area&) override { return true; }
  Book* find_open_book(std::string_view) const override { return nullptr; }
  double now() const override { return 45352.5; }
  double random() override { return 0.25; }
};

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

std::string shown(const Variant& value) {
  const ValueView view = view_of(value);
  if (view.is_number()) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", view.number());
    return text;
  }
  if (view.is_text()) return '"' + std::string(view.text()) + '"';
  if (view.is_boolean()) return view.boolean() ? "TRUE" : "FALSE";
  if (view.is_error()) return std::string(error_text(view.error()));
  return "(empty)";
}

bool same(const Variant& got, const Variant& want) {
  const ValueView a = view_of(got);
  const ValueView b = view_of(want);
  if (a.is_number() && b.is_number()) {
    const double size = std::max(std::fabs(a.number()), std::fabs(b.number()));
    return std::fabs(a.number() - b.number()) <= std::max(size * 1e-9, 1e-12);
  }
  if (a.is_empty() && b.is_text()) return b.text().empty();
  if (a.type() != b.type()) return false;
  return got == want;
}

/// Sheets that a formula names are there, even when all their cells are empty.
void add_sheets(Book& book, const CompiledFormula& formula) {
  if (!formula.tree()) return;
  for (const SheetQualifier& qualifier : formula.tree()->qualifiers)
    if (qualifier.external == 0 && qualifier.book.empty() && !qualifier.sheet.empty())
      sheet_named(book, qualifier.sheet);
}

Variant evaluate(const json& c) {
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
  std::string text = c["f"].get<std::string>();
  text.erase(0, 1);
  StillWorld world;
  Evaluator evaluator(world, functions::registry());
  const bool array = c.contains("array");
  const auto formula = CompiledFormula::compile(text, pos);
  add_sheets(book, *formula);
  const Operand result = evaluator.evaluate(*formula, sheet, pos,
                                            array ? EvaluationMode::array : EvaluationMode::cell);
  return view_of(*result.value()).to_variant();
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
  for (const auto& function : c["fn"]) functions.insert(function.get<std::string>());
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

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: run_cases CASES.jsonl [--list] [--function NAME]\n";
    return 1;
  }
  bool list = false;
  std::string only;
  for (int i = 2; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--list") list = true;
    if (std::string_view(argv[i]) == "--function" && i + 1 < argc) only = argv[++i];
  }
  std::ifstream file(argv[1]);
  if (!file) {
    std::cerr << "cannot read " << argv[1] << '\n';
    return 1;
  }
  Tally tally;
  for (std::string line; std::getline(file, line);) {
    const json c = json::parse(line);
    if (!only.empty() && std::find(c["fn"].begin(), c["fn"].end(), only) == c["fn"].end()) continue;
    const Variant got = evaluate(c);
    const Variant want = value_of(c["want"]);
    const bool passed = same(got, want);
    count(tally, c, passed);
    if (list && !passed)
      std::cout << c["id"].get<std::string>() << " [" << c.value("lo", "") << "] "
                << c["f"].get<std::string>().substr(0, 200) << "  got " << shown(got) << "  want "
                << shown(want) << (c.contains("array") ? "  array" : "") << '\n';
  }
  print(tally);
  return 0;
}
