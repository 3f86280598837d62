#pragma once

#include <gtest/gtest.h>

#include <initializer_list>

#include "qto/hosts/embedded/formats/number_format.hpp"

namespace qto::embedded::formats {

struct FormatCase {
  const char* code;
  double value;
  const char* shown;
};

/// Checks a table of format codes, values and what they show in the 1900 date system.
inline void expect_shown(std::initializer_list<FormatCase> table) {
  for (const FormatCase& row : table) {
    const NumberFormat format = NumberFormat::parse(row.code);
    EXPECT_TRUE(format.is_valid()) << row.code;
    EXPECT_EQ(format.format(row.value, false), row.shown) << row.code << " of " << row.value;
  }
}

}  // namespace qto::embedded::formats
