#include "qto/hosts/embedded/xlsx/xml_reader.hpp"

#include "qto/hosts/embedded/xlsx/package.hpp"
#include "qto/hosts/embedded/xlsx/part_reader.hpp"
#include "qto/hosts/embedded/xlsx/xml_tokenizer.hpp"

namespace qto::embedded {

void read_xml(PartStream& stream, XmlHandler& handler) {
  XmlEvents events(handler);
  XmlTokenizer tokenizer(events);
  PartReader reader(stream);
  try {
    for (;;) {
      const std::string_view bytes = reader.next();
      if (bytes.empty()) break;
      tokenizer.feed(bytes);
    }
    tokenizer.finish();
  } catch (const XmlFault& fault) {
    stream.package().fail(fault.kind, stream.name(), tokenizer.line(), fault.what());
  }
}

}  // namespace qto::embedded
