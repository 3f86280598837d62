#include "tests/conformance/drill_counts.hpp"

#include <array>
#include <chrono>
#include <cstdio>
#include <iostream>

#include "qto/diagnostics/error_report.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"
#include "qto/links/linked_books.hpp"
#include "qto/links/main.hpp"
#include "qto/parser/parser.hpp"

namespace qto::embedded::conformance {
namespace {

constexpr std::array special_functions{
    std::pair{TokenType::if_function, "IF"},  std::pair{TokenType::vlookup, "VLOOKUP"},
    std::pair{TokenType::hlookup, "HLOOKUP"}, std::pair{TokenType::lookup, "LOOKUP"},
    std::pair{TokenType::match, "MATCH"},     std::pair{TokenType::index, "INDEX"},
    std::pair{TokenType::sumif, "SUMIF"},     std::pair{TokenType::indirect, "INDIRECT"},
    std::pair{TokenType::offset, "OFFSET"}};
constexpr std::array<const char*, drill_verdict_count> verdict_names{
    "decided",      "not found", "both branches", "condition error",
    "no reference", "no table",  "failed"};

struct Totals {
  std::int64_t formulas = 0, unresolved = 0, reports = 0;
  std::array<std::array<std::int64_t, drill_verdict_count>, special_functions.size()> calls{};
};

class Drills {
 public:
  Drills(Totals& totals, bool list) : totals_(totals), list_(list) {
    auto options = make_ref<DrillOptions>();
    options->ShowMinimal();
    parser_.putref_ParseOptions(options);
  }

  void run(const Ref<host::Workbook>& book) {
    for (std::int32_t i = 1; i <= book->WorksheetsCount(); ++i) {
      const auto sheet = book->Worksheets(i);
      const Rect used = sheet->UsedRange()->block();
      for (CellPos at = used.first; at.row <= used.last.row; ++at.row)
        for (at.column = used.first.column; at.column <= used.last.column; ++at.column)
          if (sheet->cell_has_formula(at)) drill(*sheet, at);
    }
    add_counts();
  }

  std::string last_report;

 private:
  void drill(const host::Worksheet& sheet, CellPos at) {
    text_.clear();
    sheet.append_cell_formula(at, text_);
    if (!calls_special_function()) return;
    ++totals_.formulas;
    auto part = make_ref<ModelPart>();
    part->Create(sheet.Cells(at.row, at.column), "Range", "");
    const DrillVerdicts before = parser_.Verdicts();
    last_report.clear();
    parser_.AddParentRange(*part);
    parser_.Parse(*part);
    parser_.RemoveParentRange();
    if (list_) tell(before, *part, sheet.cell_value(at).is_error());
  }

  bool calls_special_function() const {
    for (const auto& [type, name] : special_functions)
      if (text_.find(std::string(name) + "(") != std::string::npos) return true;
    return false;
  }

  void tell(const DrillVerdicts& before, ModelPart& part, bool is_error) const {
    const DrillVerdicts& now = parser_.Verdicts();
    std::string what;
    if (now.unresolved_formulas() != before.unresolved_formulas()) what = "unresolved reference";
    for (const auto& [type, name] : special_functions)
      for (std::size_t i = 1; i < drill_verdict_count; ++i)
        if (now.count(type, DrillVerdict(i)) != before.count(type, DrillVerdict(i)))
          what += std::string(what.empty() ? "" : "; ") + name + ": " + verdict_names[i];
    if (what.empty() && last_report.empty()) return;
    if (is_error) what += " (the result is an error)";
    std::cout << "  " << part.WorkSheetName() << "!" << part.AddressShort() << "  " << what << "  "
              << last_report << "  " << text_.substr(0, 400) << '\n';
  }

  void add_counts() {
    const DrillVerdicts& now = parser_.Verdicts();
    totals_.unresolved += now.unresolved_formulas();
    for (std::size_t f = 0; f < special_functions.size(); ++f)
      for (std::size_t i = 0; i < drill_verdict_count; ++i)
        totals_.calls[f][i] += now.count(special_functions[f].first, DrillVerdict(i));
  }

  Totals& totals_;
  bool list_;
  Parser parser_;
  std::string text_;
};

void print(const Totals& totals) {
  std::printf("%lld formulas; %lld not drilled for an unresolved reference; %lld error reports\n",
              static_cast<long long>(totals.formulas), static_cast<long long>(totals.unresolved),
              static_cast<long long>(totals.reports));
  std::printf("%-10s", "");
  for (const char* name : verdict_names) std::printf("%16s", name);
  std::printf("\n");
  for (std::size_t f = 0; f < special_functions.size(); ++f) {
    std::printf("%-10s", special_functions[f].second);
    for (const std::int64_t count : totals.calls[f])
      std::printf("%16lld", static_cast<long long>(count));
    std::printf("\n");
  }
}

}  // namespace

void count_drills(const std::vector<std::string>& files, bool list) {
  Totals totals;
  for (const std::string& file : files) {
    const auto start = std::chrono::steady_clock::now();
    const std::int64_t formulas = totals.formulas;
    try {
      Application application;
      Main::set_shared_application(application.ref());
      Main::reset_books();
      Drills drills(totals, list);
      const int token =
          diagnostics::error_reported().add([&](const diagnostics::ErrorReport& report) {
            ++totals.reports;
            drills.last_report = report.description + " in " + std::string(report.member);
          });
      drills.run(application.Workbooks()->Open(file));
      diagnostics::error_reported().remove(token);
    } catch (const std::exception& failure) {
      std::cout << failure.what() << '\n';
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::cout << file << ": " << totals.formulas - formulas << " formulas, " << took.count() << " s"
              << std::endl;
  }
  print(totals);
}

}  // namespace qto::embedded::conformance
