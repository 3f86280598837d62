#pragma once

#include <stdexcept>
#include <string_view>

#include "qto/hosts/embedded/xlsx/xml_attributes.hpp"
#include "qto/hosts/embedded/xlsx/xml_names.hpp"

namespace qto::embedded {

class PartStream;

/// Content that XML allows and a workbook does not; read_xml turns it into the OpenFailure that
/// names part and line.
struct XmlFault : std::runtime_error {
  using std::runtime_error::runtime_error;
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

/// Reads a whole part. Throws OpenFailure with part and line for XML that is not well-formed,
/// declares a document type, or goes beyond the limits.
void read_xml(PartStream& stream, XmlHandler& handler);

}  // namespace qto::embedded
