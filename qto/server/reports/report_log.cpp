#include "qto/server/reports/report_log.hpp"

#include <deque>
#include <mutex>
#include <thread>

#include "qto/automation/error.hpp"

namespace qto::server {
namespace {

struct Logged {
  std::thread::id thread;
  std::uint32_t number;  // counted by thread
  diagnostics::ErrorReport report;
  bool taken = false;
};

struct ReportLog {
  std::mutex guard;
  std::deque<Logged> reports;
};
ReportLog& report_log() {
  static auto* const log = new ReportLog;
  return *log;
}

// A number alone: what has a destructor would keep the library loaded as long as the thread.
thread_local std::uint32_t reports_seen = 0;

void add(const diagnostics::ErrorReport& report) {
  constexpr std::size_t most = 1000;
  ReportLog& log = report_log();
  const std::lock_guard lock(log.guard);
  log.reports.push_back({std::this_thread::get_id(), ++reports_seen, report});
  if (log.reports.size() > most) log.reports.pop_front();
}

/// "Item" of "Item[Get]".
std::string_view plain_name(std::string_view member) { return member.substr(0, member.find('[')); }

}  // namespace

ClientCall::ClientCall() noexcept : before_(reports_seen) {
  [[maybe_unused]] static const int subscribed = diagnostics::error_reported().add(add);
}

void ClientCall::check(std::string_view module, std::string_view member) const {
  if (reports_seen == before_) return;
  ReportLog& log = report_log();
  const std::lock_guard lock(log.guard);
  for (Logged& logged : log.reports) {
    const diagnostics::ErrorReport& report = logged.report;
    const bool own = logged.thread == std::this_thread::get_id() && logged.number > before_;
    if (!own || logged.taken || report.module != module || plain_name(report.member) != member)
      continue;
    logged.taken = true;
    throw NumberedFailure(report.number, report.description, report.host_call);
  }
}

void begin_operation() {
  ReportLog& log = report_log();
  const std::lock_guard lock(log.guard);
  std::erase_if(log.reports,
                [](const Logged& logged) { return logged.thread == std::this_thread::get_id(); });
}

std::vector<diagnostics::ErrorReport> reports_of_operation() {
  ReportLog& log = report_log();
  const std::lock_guard lock(log.guard);
  std::vector<diagnostics::ErrorReport> all;
  for (const Logged& logged : log.reports)
    if (logged.thread == std::this_thread::get_id()) all.push_back(logged.report);
  return all;
}

void take_last_report() {
  ReportLog& log = report_log();
  const std::lock_guard lock(log.guard);
  for (auto logged = log.reports.rbegin(); logged != log.reports.rend(); ++logged)
    if (logged->thread == std::this_thread::get_id()) {
      logged->taken = true;
      return;
    }
}

}  // namespace qto::server
