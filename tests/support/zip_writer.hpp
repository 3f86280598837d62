#pragma once

#include <zip.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace qto::test {

/// Name and content of an entry.
using ZipEntry = std::pair<std::string, std::string>;

/// The bytes of a zip container with these entries, made in memory. Names must differ.
inline std::string zip_bytes(const std::vector<ZipEntry>& entries) {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* target = zip_source_buffer_create(nullptr, 0, 0, &error);
  zip_t* archive = zip_open_from_source(target, ZIP_TRUNCATE, &error);
  if (!archive) throw std::runtime_error(zip_error_strerror(&error));
  zip_source_keep(target);
  for (const auto& [name, content] : entries) {
    zip_source_t* source = zip_source_buffer(archive, content.data(), content.size(), 0);
    if (zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8) < 0)
      throw std::runtime_error(zip_strerror(archive));
  }
  if (zip_close(archive) != 0) throw std::runtime_error(zip_strerror(archive));
  zip_source_open(target);
  zip_source_seek(target, 0, SEEK_END);
  std::string bytes(static_cast<std::size_t>(zip_source_tell(target)), '\0');
  zip_source_seek(target, 0, SEEK_SET);
  zip_source_read(target, bytes.data(), bytes.size());
  zip_source_close(target);
  zip_source_free(target);
  return bytes;
}

}  // namespace qto::test
