#include "cli/output/reports.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace qto::cli {
namespace {

constexpr std::size_t most_kept = 1000;
constexpr std::size_t most_printed = 5;

}  // namespace

Reports::Reports()
    : token_(diagnostics::error_reported().add([this](const diagnostics::ErrorReport& report) {
        ++count_;
        if (kept_.size() < most_kept) kept_.push_back(report);
      })) {}

Reports::~Reports() { diagnostics::error_reported().remove(token_); }

void Reports::print() const {
  if (count_ == 0) return;
  fmt::print(stderr, "qto: {} error report{} arose, so the answer may be partial:\n", count_,
             count_ == 1 ? "" : "s");
  for (std::size_t i = 0; i < std::min(most_printed, kept_.size()); ++i) {
    const auto& report = kept_[i];
    fmt::print(stderr, "  {}{}{} ({}), in {}.{}{}{}\n", report.formula_cell,
               report.formula_cell.empty() ? "" : ": ", report.description, report.number,
               report.module, report.member, report.host_call.empty() ? "" : ", host call ",
               report.host_call);
  }
  if (count_ > most_printed) fmt::print(stderr, "  and {} more\n", count_ - most_printed);
}

}  // namespace qto::cli
