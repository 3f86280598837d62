#pragma once

#include <string>
#include <string_view>

#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {

/// The text of a string item (a shared string or an inline one), collected from its elements.
class StringItem {
 public:
  /// Texts are cut to that many UTF-16 units.
  explicit StringItem(std::size_t most_units) : most_units_(most_units) {}
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
    if (in_text_ && text_.size() < most_units_ * 8) text_.append(piece);
  }
  /// The whole text, as long as a cell can hold.
  const std::string& finish() {
    decode_escapes(text_);
    cut_to_units(text_, most_units_);
    return text_;
  }

 private:
  std::size_t most_units_;
  std::string text_;
  bool in_text_ = false;
  bool in_phonetic_ = false;
};

}  // namespace qto::embedded
