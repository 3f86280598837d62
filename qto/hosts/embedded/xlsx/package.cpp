#include "qto/hosts/embedded/xlsx/package.hpp"

#include <zip.h>

#include <algorithm>
#include <utility>

#include "qto/automation/file_path.hpp"
#include "qto/hosts/embedded/xlsx/file_kind.hpp"
#include "qto/hosts/embedded/xlsx/part_path.hpp"

namespace qto::embedded {
namespace {

std::string text_of_zip_error(int code) {
  zip_error_t error;
  zip_error_init_with_code(&error, code);
  std::string text = zip_error_strerror(&error);
  zip_error_fini(&error);
  return text;
}

bool climbs_out(std::string_view name) noexcept {
  return name.find("../") != std::string_view::npos || name.find("..\\") != std::string_view::npos;
}

}  // namespace

Package::Package(std::string file, std::string_view password, const Limits& limits)
    : file_(std::move(file)), limits_(limits) {
  std::uint64_t size = 0;
  if (auto decrypted = read_encrypted_file(file_, password, limits_)) {
    decrypted_ = *std::move(decrypted);
    size = open_memory();
  } else {
    size = open_file();
  }
  byte_limit_ = limits_.inflated_bytes + limits_.inflate_ratio * size;
  index_parts();
}

std::uint64_t Package::open_file() {
  int error = 0;
  archive_.reset(zip_open(file_.c_str(), ZIP_RDONLY, &error));
  if (!archive_) refuse_file(file_, text_of_zip_error(error));
  std::error_code ignored;
  const std::uintmax_t size = std::filesystem::file_size(text::to_path(file_), ignored);
  return size == static_cast<std::uintmax_t>(-1) ? 0 : size;
}

std::uint64_t Package::open_memory() {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* source = zip_source_buffer_create(decrypted_.data(), decrypted_.size(), 0, &error);
  if (source) archive_.reset(zip_open_from_source(source, ZIP_RDONLY, &error));
  const std::string reason = archive_ ? "" : zip_error_strerror(&error);
  if (!archive_ && source) zip_source_free(source);
  zip_error_fini(&error);
  if (!archive_)
    fail(OpenFailureKind::damaged, "", 0,
         "what the encrypted file holds is no zip container (" + reason + ")");
  return decrypted_.size();
}

void Package::Discard::operator()(zip* archive) const noexcept { zip_discard(archive); }

void Package::index_parts() {
  const zip_int64_t count = zip_get_num_entries(archive_.get(), 0);
  if (static_cast<std::uint64_t>(count) > limits_.parts)
    fail_beyond(&Limits::parts, "", "the zip container has too many parts");
  for (zip_int64_t n = 0; n < count; ++n) {
    zip_stat_t entry;
    const auto index = static_cast<zip_uint64_t>(n);
    if (zip_stat_index(archive_.get(), index, 0, &entry) != 0 || !(entry.valid & ZIP_STAT_NAME))
      continue;
    // Such names are no part names; taking them for what they resolve to would let one part
    // stand in for another.
    if (climbs_out(entry.name)) continue;
    if (!part_by_key_.emplace(part_key(entry.name), parts_.size()).second) continue;
    std::string name = entry.name;
    std::replace(name.begin(), name.end(), '\\', '/');
    parts_.push_back({std::move(name), index, entry.valid & ZIP_STAT_SIZE ? entry.size : 0});
    total_size_ += std::min(parts_.back().size, limits_.part_bytes);
  }
}

const Package::Part* Package::find(std::string_view name) const {
  const auto found = part_by_key_.find(part_key(name));
  return found == part_by_key_.end() ? nullptr : &parts_[found->second];
}

PartStream Package::open(const Part& part) { return PartStream(*this, part); }

void Package::charge(const Part& part, std::uint64_t bytes) {
  bytes_read_ += bytes;
  if (bytes_read_ > byte_limit_)
    fail_beyond(&Limits::inflate_ratio, part.name,
                "the parts inflate to more than a workbook of this file size can hold");
  if (progress_ && total_size_ > 0 && bytes > 0)
    progress_(std::min(1.0, static_cast<double>(bytes_read_) / static_cast<double>(total_size_)),
              progress_data_);
}

void Package::fail(OpenFailureKind kind, const std::string& part, long line,
                   std::string_view reason, std::string_view remedy) const {
  throw OpenFailure(kind, file_, part, line, reason, remedy);
}

void Package::fail_beyond(std::uint64_t Limits::*limit, const std::string& part,
                          std::string_view reason) const {
  const auto named = std::ranges::find(limit_names(), limit, &LimitName::value);
  fail(OpenFailureKind::too_large, part, 0, reason,
       "The limit is " + std::string(named->name) + "=" + std::to_string(limits_.*limit) +
           "; it can be raised for a file that is trusted");
}

PartStream::PartStream(Package& package, const Package::Part& part)
    : package_(package), part_(part), left_(part.size) {
  if (part.size > package.limits().part_bytes)
    package.fail_beyond(&Limits::part_bytes, part.name, "the part is too large");
  if (package.bytes_read_ + part.size > package.byte_limit_) package.charge(part, part.size);
  stream_ = zip_fopen_index(package.archive_.get(), part.index, 0);
  if (stream_) return;
  const int code = zip_error_code_zip(zip_get_error(package.archive_.get()));
  if (code == ZIP_ER_NOPASSWD)
    package.fail(OpenFailureKind::encrypted, part.name, 0, "the part is encrypted");
  package.fail(OpenFailureKind::damaged, part.name, 0,
               "the entry of the zip container cannot be read (" + text_of_zip_error(code) + ")");
}

PartStream::~PartStream() {
  if (stream_) zip_fclose(stream_);
}

std::size_t PartStream::read(void* into, std::size_t size) {
  const zip_int64_t count = zip_fread(stream_, into, size);
  if (count < 0) {
    const std::string reason = zip_file_strerror(stream_);
    package_.fail(OpenFailureKind::damaged, part_.name, 0,
                  "the compressed data is damaged (" + reason + ")");
  }
  const auto bytes = static_cast<std::uint64_t>(count);
  if (bytes > left_)
    package_.fail(OpenFailureKind::damaged, part_.name, 0,
                  "the part is longer than the zip container says");
  if (bytes == 0 && left_ > 0)
    package_.fail(OpenFailureKind::damaged, part_.name, 0,
                  "the part is shorter than the zip container says");
  left_ -= bytes;
  return static_cast<std::size_t>(bytes);
}

}  // namespace qto::embedded
