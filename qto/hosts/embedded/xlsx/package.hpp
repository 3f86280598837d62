#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qto/hosts/embedded/xlsx/open_failure.hpp"

struct zip;
struct zip_file;

namespace qto::embedded {

class PartStream;

/// The zip container of a workbook, opened for reading. Nothing is ever written from it.
class Package {
 public:
  /// Throws OpenFailure when the file is no readable zip container; says what it is instead.
  explicit Package(std::string file);
  ~Package();
  Package(const Package&) = delete;
  Package& operator=(const Package&) = delete;

  struct Part {
    std::string name;
    std::uint64_t index = 0;
    std::uint64_t size = 0;  ///< inflated
  };

  const std::string& file() const noexcept { return file_; }
  /// The part of that name (any letter case, separator or percent-encoding), or null. Of several
  /// entries with one name it is always the first.
  const Part* find(std::string_view name) const;
  const std::vector<Part>& parts() const noexcept { return parts_; }
  /// Opens a part; throws OpenFailure when the entry is damaged or inflates beyond the limits.
  PartStream open(const Part& part);

  /// Inflated size of all parts, and how much of them was read so far (parts read twice count
  /// twice).
  std::uint64_t total_size() const noexcept { return total_size_; }
  std::uint64_t bytes_read() const noexcept { return bytes_read_; }

  [[noreturn]] void fail(OpenFailureKind kind, const std::string& part, long line,
                         std::string_view reason, std::string_view remedy = {}) const;

 private:
  friend class PartStream;
  void index_parts();
  void charge(const Part& part, std::uint64_t bytes);

  std::string file_;
  zip* archive_ = nullptr;
  std::vector<Part> parts_;
  std::unordered_map<std::string, std::size_t> part_by_key_;
  std::uint64_t total_size_ = 0;
  std::uint64_t bytes_read_ = 0;
  std::uint64_t byte_limit_ = 0;
};

/// The inflated bytes of one part, from front to back.
class PartStream {
 public:
  PartStream(Package& package, const Package::Part& part);
  ~PartStream();
  PartStream(const PartStream&) = delete;
  PartStream& operator=(const PartStream&) = delete;

  /// Up to `size` bytes; 0 at the end. Throws OpenFailure for damaged data.
  std::size_t read(void* into, std::size_t size);
  const std::string& name() const noexcept { return part_.name; }
  const Package& package() const noexcept { return package_; }

 private:
  Package& package_;
  const Package::Part& part_;
  zip_file* stream_ = nullptr;
  std::uint64_t left_ = 0;
};

}  // namespace qto::embedded
