#include "qto/hosts/embedded/xlsx/xml_reader.hpp"

#include <expat.h>

#include <exception>
#include <memory>
#include <new>
#include <string>

#include "qto/hosts/embedded/xlsx/limits.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"
#include "qto/hosts/embedded/xlsx/part_reader.hpp"

namespace qto::embedded {
namespace {

struct FreeParser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

class XmlReader {
 public:
  XmlReader(PartStream& stream, XmlHandler& handler)
      : stream_(stream), handler_(handler), parser_(XML_ParserCreate(nullptr)) {
    if (!parser_) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), start, end);
    XML_SetCharacterDataHandler(parser_.get(), text);
    XML_SetStartDoctypeDeclHandler(parser_.get(), doctype);
  }

  void run() {
    PartReader reader(stream_);
    std::int64_t fed = 0;
    for (;;) {
      const std::string_view bytes = reader.next();
      fed += static_cast<std::int64_t>(bytes.size());
      if (XML_Parse(parser_.get(), bytes.data(), static_cast<int>(bytes.size()), bytes.empty()) !=
          XML_STATUS_OK)
        fail();
      if (bytes.empty()) return;
      if (fed - XML_GetCurrentByteIndex(parser_.get()) > limits::token_bytes)
        refuse(OpenFailureKind::too_large, "a tag or comment is too long");
    }
  }

 private:
  // Exceptions must not pass through the tokenizer, which is C: they wait until it has returned.
  template <class Action>
  void guarded(Action&& action) noexcept {
    if (pending_) return;
    try {
      action();
    } catch (...) {
      pending_ = std::current_exception();
      XML_StopParser(parser_.get(), XML_FALSE);
    }
  }

  static void XMLCALL start(void* self, const char* name, const char** attributes) {
    auto& reader = *static_cast<XmlReader*>(self);
    reader.guarded([&] { reader.on_start(name, attributes); });
  }
  static void XMLCALL end(void* self, const char* name) {
    auto& reader = *static_cast<XmlReader*>(self);
    reader.guarded([&] { reader.on_end(name); });
  }
  static void XMLCALL text(void* self, const char* data, int size) {
    auto& reader = *static_cast<XmlReader*>(self);
    if (reader.skipping_ != 0) return;
    reader.guarded([&] { reader.handler_.on_text({data, static_cast<std::size_t>(size)}); });
  }
  static void XMLCALL doctype(void* self, const char*, const char*, const char*, int) {
    auto& reader = *static_cast<XmlReader*>(self);
    reader.guarded([] { throw XmlFault("a document type declaration is not allowed"); });
  }

  void on_start(std::string_view name, const char* const* attributes) {
    if (++depth_ > limits::element_depth) throw XmlFault("elements are nested too deeply");
    names_.enter(attributes, depth_);
    if (skipping_ != 0) return;
    const Space space = names_.resolve(name);
    if (space == Space::compatibility && name == "Choice") {
      skipping_ = depth_;
      return;
    }
    handler_.on_start(space, name, Attributes(attributes, names_));
  }

  void on_end(std::string_view name) {
    if (skipping_ == 0) {
      const Space space = names_.resolve(name);
      handler_.on_end(space, name);
    } else if (skipping_ == depth_) {
      skipping_ = 0;
    }
    names_.leave(depth_--);
  }

  [[noreturn]] void fail() {
    if (pending_) try {
        std::rethrow_exception(pending_);
      } catch (const XmlFault& fault) {
        refuse(OpenFailureKind::damaged, fault.what());
      }
    const XML_Error error = XML_GetErrorCode(parser_.get());
    if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    refuse(OpenFailureKind::damaged, XML_ErrorString(error));
  }

  [[noreturn]] void refuse(OpenFailureKind kind, std::string_view reason) const {
    stream_.package().fail(kind, stream_.name(),
                           static_cast<long>(XML_GetCurrentLineNumber(parser_.get())), reason);
  }

  PartStream& stream_;
  XmlHandler& handler_;
  std::unique_ptr<XML_ParserStruct, FreeParser> parser_;
  XmlNames names_;
  int depth_ = 0;
  int skipping_ = 0;  ///< depth of the element whose content is passed over, 0 for none
  std::exception_ptr pending_;
};

}  // namespace

void read_xml(PartStream& stream, XmlHandler& handler) { XmlReader(stream, handler).run(); }

}  // namespace qto::embedded
