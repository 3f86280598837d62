#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <string>

namespace qto::fuzz {

/// Bytes under a file name, on no disk.
class MemoryFile {
 public:
  MemoryFile(const void* bytes, std::size_t size) : handle_(memfd_create("book", 0)) {
    if (write(handle_, bytes, size) != static_cast<ssize_t>(size)) _exit(1);
  }
  ~MemoryFile() { close(handle_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  std::string path() const { return "/proc/self/fd/" + std::to_string(handle_); }

 private:
  int handle_;
};

}  // namespace qto::fuzz
