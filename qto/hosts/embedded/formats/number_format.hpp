#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/formats/format_section.hpp"

namespace qto::embedded::formats {

/// A number format code (ECMA-376 Part 1, 18.8.31), read once and used for many cells.
class NumberFormat {
 public:
  /// General.
  NumberFormat();

  /// Reads a code. A malformed one gives a usable format that behaves as General (is_valid() is
  /// false); so does an empty one, which counts as valid.
  static NumberFormat parse(std::string_view code);

  bool is_valid() const { return valid_; }

  /// True when some section shows numbers as dates or times: values of such cells are dates.
  bool is_date() const { return date_; }

  bool is_general() const { return general_; }

  /// True for the code that marks a cell as text, "@".
  bool is_text() const { return text_; }

  /// The shown text of a number; "########" when the format cannot show it (a date that is negative
  /// or beyond 9999-12-31, or a value that is no finite number).
  std::string format(double value, bool date1904) const;

  /// As format(), with nothing for a number that cannot be shown.
  std::optional<std::string> try_format(double value, bool date1904) const;

  /// The shown text of a text value; the text itself unless the code has a section for texts.
  std::string format_text(std::string_view text) const;

 private:
  std::vector<Section> number_sections_;
  std::optional<Section> text_section_;
  bool valid_ = true;
  bool date_ = false;
  bool general_ = true;
  bool text_ = false;
};

/// A number as text the way it is joined to other text: up to 15 significant digits, scientific
/// from 1E+15 on and for long numbers below 0.0001.
std::string general_text(double value);

/// What a cell of a column `column_width_chars` characters wide shows for a number. General is
/// rounded to fit; anything else too wide, or not showable, gives the column full of '#' (1..255).
std::string cell_text(const NumberFormat& format, double value, bool date1904,
                      double column_width_chars);

/// The format code behind a number format id that a workbook may use without declaring it
/// (ECMA-376 Part 1, 18.8.30), as it shows under en-US settings. Empty for ids without one.
std::string_view builtin_format(int num_fmt_id);

}  // namespace qto::embedded::formats
