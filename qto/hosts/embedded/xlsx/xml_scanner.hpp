#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/xlsx/xml_events.hpp"

namespace qto::embedded {

/// Tokenizes the XML that spreadsheet applications write: UTF-8, elements, attributes, text and the
/// predefined entities. It runs at a multiple of the speed of a full tokenizer, and leaves to one
/// whatever else it meets, damage included: it stops before the first token that is not plain, and
/// context(), rest() and line() say from where another tokenizer has to go on.
class XmlScanner {
 public:
  explicit XmlScanner(XmlEvents& events) : events_(events) {}

  /// Takes the next bytes of the part. False when something else must go on from rest().
  bool feed(std::string_view bytes);
  /// True when the bytes so far are a whole document.
  bool complete() const noexcept { return seen_root_ && open_.empty() && at_ == buffer_.size(); }

  /// What another tokenizer has to see before the rest: the start tags of the open elements as they
  /// stood in the part, or a stand-in for what came before or after the root.
  std::string context() const;
  std::string_view rest() const noexcept { return {buffer_.data() + at_, buffer_.size() - at_}; }
  /// The line, from 1, on which the rest begins.
  long line() const noexcept;

 private:
  enum class Step { done, incomplete, beyond };
  struct Attribute {
    std::size_t name, name_end, value, value_end;
    unsigned classes;  ///< of the value's bytes
  };
  struct OpenTag {
    std::size_t offset;       ///< in tags_
    std::size_t name_length;  ///< the name stands behind "<"
  };

  Step scan_prolog();
  Step scan_text();
  Step scan_tag();
  Step scan_end_tag();
  Step scan_attribute(std::size_t& p);
  bool acceptable_attributes() const;
  void report_start(std::size_t name, std::size_t name_end);
  bool acceptable(std::string_view text, unsigned classes) const;

  XmlEvents& events_;
  std::vector<char> buffer_;  ///< what is not scanned yet begins at at_
  std::size_t at_ = 0;
  long newlines_ = 0;  ///< in all bytes fed
  bool in_document_ = false;
  bool moved_ = false;  ///< past the first byte
  bool seen_root_ = false;
  std::string tags_;  ///< start tags of the open elements, one after another
  std::vector<OpenTag> open_;
  std::vector<Attribute> attributes_;
  std::vector<const char*> list_;  ///< the attributes in the form that is handed on
};

}  // namespace qto::embedded
