#pragma once

#include <string>

#include "qto/hosts/embedded/formats/decimal.hpp"
#include "qto/hosts/embedded/formats/format_section.hpp"

namespace qto::embedded::formats {

/// Appends a number of a SectionKind::number section without its sign; `magnitude` >= 0.
void render_number(const Section& section, double magnitude, std::string& out);

/// The same of a SectionKind::fraction section. False, appending nothing, when the percent signs of
/// the section or its denominator take the number beyond the largest.
bool render_fraction(const Section& section, double magnitude, std::string& out);

/// Appends a date or time of a SectionKind::date section. False, appending nothing,
/// when the serial has no date in the system.
bool render_date(const Section& section, double serial, bool date1904, std::string& out);

/// Writes the digits of a whole number into the placeholders of a section, one after the other.
class IntegerWriter {
 public:
  IntegerWriter(const Decimal& number, int placeholders, bool grouping)
      : number_(number),
        length_(number.integer_length()),
        position_(placeholders),
        grouping_(grouping) {}

  /// Writes what the next placeholder, `symbol`, stands for. The first one takes all digits that
  /// have no placeholder of their own.
  void write(char symbol, std::string& out);

  /// Makes the last placeholder show a zero even where it is a '#'.
  void show_zero() { show_zero_ = true; }

 private:
  void write_digit(int power, char symbol, std::string& out);

  const Decimal& number_;
  int length_;
  int position_;  // placeholders that are still to come
  bool grouping_;
  bool first_ = true;
  bool zeros_ = false;  // a '0' was passed, so every later place has a digit
  bool show_zero_ = false;
};

}  // namespace qto::embedded::formats
