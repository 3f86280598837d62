#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>

#include "qto/hosts/embedded/xlsx/xml_events.hpp"
#include "qto/hosts/embedded/xlsx/xml_scanner.hpp"

struct XML_ParserStruct;

namespace qto::embedded {

/// Tokenizes any XML that is allowed in a package: expat, without document type declarations, whose
/// entities could name files or multiply.
class ExpatTokenizer {
 public:
  /// Goes on in the middle of a document: `context` is read without being reported, and what
  /// follows begins on line `first_line`.
  ExpatTokenizer(XmlEvents& events, std::string_view context, long first_line);
  ~ExpatTokenizer();
  ExpatTokenizer(const ExpatTokenizer&) = delete;
  ExpatTokenizer& operator=(const ExpatTokenizer&) = delete;

  /// The next bytes, none at the end of the document. Throws XmlFault, or what the handler threw.
  void feed(std::string_view bytes);
  long line() const;

 private:
  struct Callbacks;
  struct FreeParser {
    void operator()(XML_ParserStruct* parser) const;
  };
  [[noreturn]] void fail();

  XmlEvents& events_;
  std::unique_ptr<XML_ParserStruct, FreeParser> parser_;
  bool muted_ = true;
  std::int64_t fed_ = 0;
  long lines_before_ = 0;
  std::exception_ptr pending_;
};

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
