#pragma once

#include "qto/hosts/embedded/xlsx/xml_events.hpp"

namespace qto::embedded {

class PartStream;

/// Reads a whole part. Throws OpenFailure with part and line for XML that is not well-formed,
/// declares a document type, goes beyond the limits, or that the handler finds fault with.
void read_xml(PartStream& stream, XmlHandler& handler);

}  // namespace qto::embedded
