#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "qto/hosts/embedded/book/table.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {

/// Reads pivot tables. Several of them share the description of their source, which is read once.
class PivotReader {
 public:
  PivotReader(Package& package, std::string base_folder)
      : package_(package), base_folder_(std::move(base_folder)) {}
  PivotModel read(const Package::Part& part);

 private:
  std::string source_of(const Package::Part& pivot_part);
  const std::string& connection_name(std::int64_t number);

  Package& package_;
  std::string base_folder_;
  std::unordered_map<std::string, std::string> sources_;  ///< by part
  std::unordered_map<std::int64_t, std::string> connections_;
  bool connections_read_ = false;
};

}  // namespace qto::embedded
