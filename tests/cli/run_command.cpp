#include "tests/cli/run_command.hpp"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace qto::test {
namespace {

struct Pipe {
  Pipe() {
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  }
  ~Pipe() {
    close_read();
    close_write();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void close_read() { close_end(0); }
  void close_write() { close_end(1); }
  int ends[2];

 private:
  void close_end(int i) {
    if (ends[i] >= 0) close(ends[i]);
    ends[i] = -1;
  }
};

struct Process {
  Pipe in, out, err;
  pid_t id = 0;

  explicit Process(const std::vector<std::string>& arguments) {
    std::string program = QTO_COMMAND;
    std::vector<std::string> words = arguments;
    std::vector<char*> argv{program.data()};
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    id = fork();
    if (id < 0) throw std::runtime_error("no process");
    if (id == 0) {
      dup2(in.ends[0], STDIN_FILENO);
      dup2(out.ends[1], STDOUT_FILENO);
      dup2(err.ends[1], STDERR_FILENO);
      execv(argv[0], argv.data());
      _exit(127);
    }
    in.close_read();
    out.close_write();
    err.close_write();
  }

  int wait() {
    int status = 0;
    waitpid(id, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
};

/// Appends what comes until the end, or until the text holds `enough`.
void read_from(int end, std::string& text, const std::string& enough = "") {
  char buffer[4096];
  while (enough.empty() || text.find(enough) == std::string::npos) {
    const ssize_t got = read(end, buffer, sizeof buffer);
    if (got <= 0) return;
    text.append(buffer, static_cast<std::size_t>(got));
  }
}

}  // namespace

Outcome run_qto(const std::vector<std::string>& arguments, const std::string& typed) {
  std::signal(SIGPIPE, SIG_IGN);  // the command need not read what is typed
  Process process(arguments);
  (void)!write(process.in.ends[1], typed.data(), typed.size());
  process.in.close_write();
  Outcome outcome;
  std::thread errors([&] { read_from(process.err.ends[0], outcome.err); });
  read_from(process.out.ends[0], outcome.out);
  errors.join();
  outcome.status = process.wait();
  return outcome;
}

Outcome interrupt_qto(const std::vector<std::string>& arguments, const std::string& prompt) {
  Process process(arguments);
  Outcome outcome;
  read_from(process.err.ends[0], outcome.err, prompt);
  kill(process.id, SIGINT);
  std::thread errors([&] { read_from(process.err.ends[0], outcome.err); });
  read_from(process.out.ends[0], outcome.out);
  errors.join();
  outcome.status = process.wait();
  return outcome;
}

std::string plan() { return QTO_SOURCE_DIR "/examples/workbooks/plan.xlsx"; }

}  // namespace qto::test
