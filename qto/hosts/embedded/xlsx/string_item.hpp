#pragma once

#include <string>
#include <string_view>

#include "qto/hosts/embedded/xlsx/limits.hpp"
#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {

/// The text of a string item (a shared string or an inline one), collected from its elements.
class StringItem {
 public:
  void clear() {
    text_.clear();
    in_text_ = in_phonetic_ = false;
  }
  void start(std::string_view element) {
    if (element == "t")
      in_text_ = !in_phonetic_;
    else if (element == "rPh")
      in_phonetic_ = true;
  }
  void end(std::string_view element) {
    if (element == "t")
      in_text_ = false;
    else if (element == "rPh")
      in_phonetic_ = false;
  }
  void text(std::string_view piece) {
    // What is collected still holds escapes of seven bytes for one unit.
    if (in_text_ && text_.size() < limits::cell_text_units * 8) text_.append(piece);
  }
  /// The whole text, as long as a cell can hold.
  const std::string& finish() {
    decode_escapes(text_);
    cut_to_units(text_, limits::cell_text_units);
    return text_;
  }

 private:
  std::string text_;
  bool in_text_ = false;
  bool in_phonetic_ = false;
};

}  // namespace qto::embedded
