#pragma once

#include <optional>
#include <string_view>

#include "qto/hosts/embedded/xlsx/xml_expat.hpp"
#include "qto/hosts/embedded/xlsx/xml_scanner.hpp"

namespace qto::embedded {

/// Tokenizes a part: the scanner for as long as the XML is plain, expat from there on.
class XmlTokenizer {
 public:
  enum class Way { scanner_first, expat_only };
  explicit XmlTokenizer(XmlEvents& events, Way way = Way::scanner_first);

  /// The next bytes of the part. Throws XmlFault, or what the handler threw.
  void feed(std::string_view bytes);
  /// After the last bytes: throws XmlFault when the document is not complete.
  void finish();
  /// The line that is being read, from 1.
  long line() const;

 private:
  void hand_over();

  XmlEvents& events_;
  XmlScanner scanner_;
  std::optional<ExpatTokenizer> expat_;
};

}  // namespace qto::embedded
