#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/xlsx/limits.hpp"
#include "qto/hosts/embedded/xlsx/open_failure.hpp"

namespace qto::embedded {

struct OpenOptions {
  /// Of an encrypted workbook; "" tries the well-known default of such files.
  std::string password = {};
  /// Called now and then while the book is read, with the fraction done (0..1).
  void (*progress)(double fraction, void* data) = nullptr;
  void* progress_data = nullptr;
  /// Keep the results that the file remembers; otherwise everything waits for calculation.
  bool keep_cached_values = true;
  /// Read only what the book links to: sheets come empty, names and styles not at all.
  bool links_only = false;
  /// Beyond these a file is refused as too large.
  Limits limits = {};
};

/// Reads a workbook (.xlsx, .xlsm, .xltx, .xltm; ECMA-376, transitional and strict), also an
/// encrypted one ([MS-OFFCRYPTO]). A file whose
/// formulas have no results, as writers without a calculation leave it, comes with everything
/// waiting for calculation; otherwise only the cells without a result wait. Throws OpenFailure.
std::unique_ptr<Book> open_workbook(const std::string& file, const OpenOptions& options = {});

}  // namespace qto::embedded
