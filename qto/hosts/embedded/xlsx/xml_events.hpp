#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/xlsx/open_failure.hpp"
#include "qto/hosts/embedded/xlsx/xml_attributes.hpp"
#include "qto/hosts/embedded/xlsx/xml_names.hpp"

namespace qto::embedded {

/// XML that is not well-formed, or content that XML allows and a workbook does not. Whoever reads
/// the part turns it into the OpenFailure that names part and line.
struct XmlFault : std::runtime_error {
  explicit XmlFault(const std::string& reason, OpenFailureKind failure = OpenFailureKind::damaged)
      : std::runtime_error(reason), kind(failure) {}
  OpenFailureKind kind;
};

/// Receives a part element by element. Names come without prefix; of alternate contents only the
/// fallback is reported.
class XmlHandler {
 public:
  virtual ~XmlHandler() = default;
  virtual void on_start(Space space, std::string_view name, const Attributes& attributes) = 0;
  virtual void on_end(Space, std::string_view) {}
  /// Character data; one stretch may come in several pieces.
  virtual void on_text(std::string_view) {}
};

/// What stands between a tokenizer and a handler: resolves prefixes, passes over alternate
/// contents, and bounds the depth.
class XmlEvents {
 public:
  explicit XmlEvents(XmlHandler& handler) : handler_(handler) {}

  /// `attributes`: names and values in turn, ended by a null.
  void start(std::string_view name, const char* const* attributes);
  void end(std::string_view name);
  void text(std::string_view data) {
    if (skipping_ == 0) handler_.on_text(data);
  }

 private:
  XmlHandler& handler_;
  XmlNames names_;
  int depth_ = 0;
  int skipping_ = 0;  ///< depth of the element whose content is passed over, 0 for none
};

}  // namespace qto::embedded
