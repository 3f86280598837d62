#include "qto/diagnostics/trace_log.hpp"

#include <ctime>
#include <fstream>
#include <memory>
#include <utility>

namespace qto::diagnostics {
namespace {

class Log {
 public:
  Log(std::string file_name, std::string title)
      : file_name_(std::move(file_name)), title_(std::move(title)) {}

  void write(const std::string& line) {
    if (!std::exchange(opened_, true)) open();
    // What a failing program did last is what the log is for.
    file_ << line << '\n' << std::flush;
  }

 private:
  void open() {
    file_.open(file_name_, std::ios::trunc);
    const std::time_t now = std::time(nullptr);
    char moment[32] = "";
    std::strftime(moment, sizeof moment, "%Y-%m-%d %H:%M:%S", std::localtime(&now));
    file_ << "Tracing " << title_ << "\nSession started " << moment << "\n\n";
  }

  std::string file_name_;
  std::string title_;
  std::ofstream file_;
  bool opened_ = false;
};

}  // namespace

std::string trace_line(const QualifiedName& name, int depth) {
  std::string line(depth > 0 ? static_cast<std::size_t>(depth) - 1 : 0, '\t');
  return line.append(name.module).append(".").append(name.member);
}

TraceSink trace_log(std::string file_name, std::string application_title) {
  const auto log = std::make_shared<Log>(std::move(file_name), std::move(application_title));
  return [log](const QualifiedName& name, int depth, bool entering) {
    if (entering) log->write(trace_line(name, depth));
  };
}

}  // namespace qto::diagnostics
