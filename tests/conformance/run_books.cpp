// Recalculates workbooks in full and compares each cell with the result that the file remembers.
// Usage: run_books [--list] [--seconds N] FILE|FOLDER...
// Each workbook is calculated in a process of its own, which is given N seconds (60). The program
// ends with 0 when nothing differs but what depends on time, chance or unknown functions, and with
// 1 otherwise or when a workbook could not be checked.

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <iostream>
#include <map>
#include <sstream>

#include "qto/hosts/embedded/xlsx/open_workbook.hpp"
#include "tests/conformance/book_check.hpp"

namespace {

using namespace qto::embedded;
using namespace qto::embedded::conformance;

struct Options {
  bool list = false;
  unsigned seconds = 60;
  std::vector<std::string> files;
};

struct Totals {
  long compared = 0, kept = 0, without_result = 0;
  long differ[reasons] = {};
  std::map<std::string, FunctionCounts> by_function;
  int unchecked = 0;
};

/// What the process of one workbook writes: a line of counts, a line for each function, and then
/// what is meant for the eye.
void report(std::ostream& out, const BookResult& result, bool list) {
  out << result.compared << ' ' << result.kept << ' ' << result.without_result << ' '
      << result.seconds;
  for (const long count : result.differ) out << ' ' << count;
  out << '\n' << result.by_function.size() << '\n';
  for (const auto& [name, counts] : result.by_function) {
    out << counts.compared << ' ' << counts.kept;
    for (const long count : counts.differ) out << ' ' << count;
    out << ' ' << name << '\n';
  }
  if (!list) return;
  for (const Difference& d : result.differences)
    out << "  [" << name_of(d.reason) << "] " << d.cell << " ="
        << d.formula.substr(d.formula.starts_with('='), 300) << "  got " << d.got << "  want "
        << d.want << (d.array ? "  array" : "") << '\n';
}

void add_report(Totals& totals, const std::string& file, std::istream& in) {
  long compared = 0;
  long kept = 0;
  long without = 0;
  double seconds = 0;
  in >> compared >> kept >> without >> seconds;
  totals.compared += compared;
  totals.kept += kept;
  totals.without_result += without;
  std::cout << file << ": compared " << compared;
  for (int i = 0; i < reasons; ++i) {
    long count = 0;
    in >> count;
    totals.differ[i] += count;
    if (count) std::cout << ", " << name_of(static_cast<Reason>(i)) << ' ' << count;
  }
  if (kept) std::cout << ", kept " << kept;
  if (without) std::cout << ", without result " << without;
  std::cout << ", " << seconds << " s\n";
  std::size_t rows = 0;
  in >> rows;
  for (std::size_t i = 0; i < rows; ++i) {
    FunctionCounts row;
    std::string name;
    in >> row.compared >> row.kept;
    for (long& count : row.differ) in >> count;
    in >> name;
    FunctionCounts& sum = totals.by_function[name];
    sum.compared += row.compared;
    sum.kept += row.kept;
    for (int reason = 0; reason < reasons; ++reason) sum.differ[reason] += row.differ[reason];
  }
  in.ignore();
  for (std::string line; std::getline(in, line);) std::cout << line << '\n';
}

/// Runs in a process of its own, so that neither a crash nor an endless loop ends the whole run.
int check_alone(const std::string& file, const Options& options, int out) {
  alarm(options.seconds);
  std::ostringstream text;
  int status = 0;
  try {
    const auto book = open_workbook(file);
    report(text, check_book(*book), options.list);
  } catch (const OpenFailure& failure) {
    text << failure.what();
    status = 2;
  }
  const std::string all = text.str();
  for (std::size_t done = 0; done < all.size();) {
    const ssize_t written = write(out, all.data() + done, all.size() - done);
    if (written <= 0) return 3;
    done += static_cast<std::size_t>(written);
  }
  return status;
}

void check(const std::string& file, const Options& options, Totals& totals) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  std::cout.flush();
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    _exit(check_alone(file, options, ends[1]));
  }
  close(ends[1]);
  std::string text;
  char buffer[4096];
  for (ssize_t size; (size = read(ends[0], buffer, sizeof buffer)) > 0;)
    text.append(buffer, static_cast<std::size_t>(size));
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
    std::istringstream in(text);
    add_report(totals, file, in);
    return;
  }
  ++totals.unchecked;
  if (WIFEXITED(status))
    std::cout << text << '\n';
  else if (WTERMSIG(status) == SIGALRM)
    std::cout << file << ": not done within " << options.seconds << " seconds\n";
  else
    std::cout << file << ": ended by signal " << WTERMSIG(status) << '\n';
}

void print(const Totals& totals) {
  std::cout << "\nby function: compared, kept";
  for (int i = 0; i < reasons; ++i) std::cout << ", " << name_of(static_cast<Reason>(i));
  std::cout << '\n';
  for (const auto& [name, row] : totals.by_function) {
    std::cout << "  " << name << "  " << row.compared << ' ' << row.kept;
    for (const long count : row.differ) std::cout << ' ' << count;
    std::cout << '\n';
  }
  std::cout << "compared " << totals.compared << ", kept " << totals.kept;
  for (int i = 0; i < reasons; ++i)
    std::cout << ", " << name_of(static_cast<Reason>(i)) << ' ' << totals.differ[i];
  std::cout << ", without result " << totals.without_result << ", files not checked "
            << totals.unchecked << '\n';
}

Options read_options(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--list") {
      options.list = true;
    } else if (argument == "--seconds" && i + 1 < argc) {
      options.seconds = static_cast<unsigned>(std::stoul(argv[++i]));
    } else if (std::filesystem::is_directory(argument)) {
      for (const auto& entry : std::filesystem::directory_iterator(argument))
        if (entry.is_regular_file()) options.files.push_back(entry.path().string());
    } else {
      options.files.push_back(argument);
    }
  }
  std::sort(options.files.begin(), options.files.end());
  return options;
}

}  // namespace

int main(int argc, char** argv) {
  const Options options = read_options(argc, argv);
  if (options.files.empty()) {
    std::cerr << "usage: run_books [--list] [--seconds N] FILE|FOLDER...\n";
    return 1;
  }
  Totals totals;
  for (const std::string& file : options.files) check(file, options, totals);
  print(totals);
  const long unexplained = totals.differ[static_cast<int>(Reason::own)];
  return unexplained == 0 && totals.unchecked == 0 ? 0 : 1;
}
