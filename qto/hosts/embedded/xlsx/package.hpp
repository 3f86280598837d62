#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qto/hosts/embedded/encryption/bytes.hpp"
#include "qto/hosts/embedded/xlsx/limits.hpp"
#include "qto/hosts/embedded/xlsx/open_failure.hpp"

struct zip;
struct zip_file;

namespace qto::embedded {

class PartStream;

/// The zip container of a workbook, also of an encrypted one, opened for reading. Nothing is ever
/// written from it.
class Package {
 public:
  /// Throws OpenFailure when the file is no readable zip container; says what it is instead.
  explicit Package(std::string file, std::string_view password = {},
                   const Limits& limits = standard_limits);
  Package(const Package&) = delete;
  Package& operator=(const Package&) = delete;

  struct Part {
    std::string name;
    std::uint64_t index = 0;
    std::uint64_t size = 0;  ///< inflated
  };

  const std::string& file() const noexcept { return file_; }
  const Limits& limits() const noexcept { return limits_; }
  /// The part of that name (any letter case, separator or percent-encoding), or null. Of several
  /// entries with one name it is always the first.
  const Part* find(std::string_view name) const;
  const std::vector<Part>& parts() const noexcept { return parts_; }
  /// Opens a part; throws OpenFailure when the entry is damaged or inflates beyond the limits.
  PartStream open(const Part& part);

  /// Called now and then with the fraction of the parts that was read.
  void set_progress(void (*progress)(double fraction, void* data), void* data) noexcept {
    progress_ = progress;
    progress_data_ = data;
  }

  [[noreturn]] void fail(OpenFailureKind kind, const std::string& part, long line,
                         std::string_view reason, std::string_view remedy = {}) const;
  /// Refuses the file because of a limit.
  [[noreturn]] void fail_beyond(std::uint64_t Limits::*limit, const std::string& part,
                                std::string_view reason) const;

 private:
  friend class PartStream;
  /// The archive; gives the bytes of the file.
  std::uint64_t open_file();
  std::uint64_t open_memory();
  void index_parts();
  void charge(const Part& part, std::uint64_t bytes);

  std::string file_;
  const Limits limits_;
  Bytes decrypted_;  ///< the container itself, when the file is encrypted
  struct Discard {
    void operator()(zip* archive) const noexcept;
  };
  std::unique_ptr<zip, Discard> archive_;
  std::vector<Part> parts_;
  std::unordered_map<std::string, std::size_t> part_by_key_;
  std::uint64_t total_size_ = 0;
  std::uint64_t bytes_read_ = 0;
  std::uint64_t byte_limit_ = 0;
  void (*progress_)(double fraction, void* data) = nullptr;
  void* progress_data_ = nullptr;
};

/// The inflated bytes of one part, from front to back.
class PartStream {
 public:
  PartStream(Package& package, const Package::Part& part);
  ~PartStream();
  PartStream(const PartStream&) = delete;
  PartStream& operator=(const PartStream&) = delete;

  /// Up to `size` bytes; 0 at the end. Throws OpenFailure for damaged data. May run on a thread of
  /// its own: it touches nothing but this stream.
  std::size_t read(void* into, std::size_t size);
  /// Counts bytes as read; throws OpenFailure when the package inflates beyond the limits.
  void account(std::size_t bytes) { package_.charge(part_, bytes); }
  const std::string& name() const noexcept { return part_.name; }
  std::uint64_t size() const noexcept { return part_.size; }
  const Package& package() const noexcept { return package_; }

 private:
  Package& package_;
  const Package::Part& part_;
  zip_file* stream_ = nullptr;
  std::uint64_t left_ = 0;
};

}  // namespace qto::embedded
