// Shows a trace while it arises. Listens on a local socket, or reads standard input:
//
//   example_trace_viewer calls.socket &
//   qto inputs plan.xlsx 'Summary!C7' --trace-viewer calls.socket
//
//   qto inputs plan.xlsx 'Summary!C7' --trace-viewer fd:3 3>&1 >/dev/null | example_trace_viewer -

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

namespace {

/// Removes a socket that an earlier run left behind. Anything else at that path stays.
bool make_room(const char* path) {
  struct stat found {};
  if (lstat(path, &found) != 0) return true;
  if (S_ISSOCK(found.st_mode)) return unlink(path) == 0;
  errno = EEXIST;
  return false;
}

/// The first client of a socket at that path, or -1.
int first_client(const char* path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (std::strlen(path) >= sizeof address.sun_path) return errno = ENAMETOOLONG, -1;
  std::strcpy(address.sun_path, path);
  if (!make_room(path)) return -1;
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return -1;
  if (listen(listener, 1) != 0) return -1;
  const int client = accept(listener, nullptr, nullptr);
  close(listener);
  unlink(path);
  return client;
}

/// A message is "1 " and the line of an entry, or "2 " and the name of what was left.
class Display {
 public:
  void take(std::string_view message) {
    if (message.size() < 2) return;
    const std::string_view text = message.substr(2);
    if (message.front() == '1') {
      depth_ = static_cast<int>(text.find_first_not_of('\t'));
      print("> ", text.substr(static_cast<std::size_t>(depth_)), depth_);
      ++calls_;
    } else {
      print("< ", text, depth_);
      --depth_;
    }
    deepest_ = std::max(deepest_, depth_ + 1);
  }
  void finish() const { std::printf("%ld calls, %d deep\n", calls_, deepest_); }

 private:
  /// Deep calls stand on the right margin with their depth.
  static void print(const char* mark, std::string_view name, int depth) {
    constexpr int widest = 20;
    std::printf("%*s%s%.*s", 2 * std::clamp(depth, 0, widest), "", mark,
                static_cast<int>(name.size()), name.data());
    if (depth > widest) std::printf("  (%d)", depth);
    std::printf("\n");
  }

  long calls_ = 0;
  int depth_ = 0;
  int deepest_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return std::fprintf(stderr, "usage: %s SOCKET|-\n", argv[0]), 1;
  const bool from_input = std::strcmp(argv[1], "-") == 0;
  const int source = from_input ? STDIN_FILENO : first_client(argv[1]);
  if (source < 0) return std::perror(argv[1]), 1;
  Display display;
  std::string pending;
  char buffer[65536];
  for (ssize_t got; (got = read(source, buffer, sizeof buffer)) > 0;) {
    pending.append(buffer, static_cast<std::size_t>(got));
    std::size_t begin = 0;
    for (std::size_t end; (end = pending.find('\n', begin)) != std::string::npos; begin = end + 1)
      display.take(std::string_view(pending).substr(begin, end - begin));
    pending.erase(0, begin);
  }
  display.finish();
  return 0;
}
