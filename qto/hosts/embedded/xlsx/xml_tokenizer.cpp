#include "qto/hosts/embedded/xlsx/xml_tokenizer.hpp"

#include <expat.h>
#include <algorithm>
#include <new>

namespace qto::embedded {

struct ExpatTokenizer::Callbacks {
  // Exceptions must not pass through expat, which is C: they wait until it has returned.
  template <class Action>
  static void guarded(void* data, Action&& action) noexcept {
    auto& self = *static_cast<ExpatTokenizer*>(data);
    if (self.pending_ || self.muted_) return;
    try {
      action(self.events_);
    } catch (...) {
      self.pending_ = std::current_exception();
      XML_StopParser(self.parser_.get(), XML_FALSE);
    }
  }
  static void XMLCALL start(void* self, const char* name, const char** attributes) {
    guarded(self, [&](XmlEvents& events) { events.start(name, attributes); });
  }
  static void XMLCALL end(void* self, const char* name) {
    guarded(self, [&](XmlEvents& events) { events.end(name); });
  }
  static void XMLCALL text(void* self, const char* data, int size) {
    guarded(self, [&](XmlEvents& events) { events.text({data, static_cast<std::size_t>(size)}); });
  }
  static void XMLCALL doctype(void* self, const char*, const char*, const char*, int) {
    guarded(self, [](XmlEvents&) { throw XmlFault("a document type declaration is not allowed"); });
  }
};

void ExpatTokenizer::FreeParser::operator()(XML_ParserStruct* parser) const {
  XML_ParserFree(parser);
}

ExpatTokenizer::ExpatTokenizer(XmlEvents& events, std::string_view context, long first_line)
    : events_(events), parser_(XML_ParserCreate(nullptr)) {
  if (!parser_) throw std::bad_alloc();
  XML_SetUserData(parser_.get(), this);
  XML_SetElementHandler(parser_.get(), Callbacks::start, Callbacks::end);
  XML_SetCharacterDataHandler(parser_.get(), Callbacks::text);
  XML_SetStartDoctypeDeclHandler(parser_.get(), Callbacks::doctype);
  if (!context.empty()) feed(context);
  lines_before_ =
      first_line - 1 - static_cast<long>(std::count(context.begin(), context.end(), '\n'));
  muted_ = false;
}

ExpatTokenizer::~ExpatTokenizer() = default;

void ExpatTokenizer::feed(std::string_view bytes) {
  fed_ += static_cast<std::int64_t>(bytes.size());
  if (XML_Parse(parser_.get(), bytes.data(), static_cast<int>(bytes.size()), bytes.empty()) !=
      XML_STATUS_OK)
    fail();
  const std::int64_t unread = fed_ - XML_GetCurrentByteIndex(parser_.get());
  if (static_cast<std::uint64_t>(unread) > events_.limits().xml_tag_bytes)
    throw XmlFault("a tag or comment is too long", OpenFailureKind::too_large);
}

void ExpatTokenizer::fail() {
  if (pending_) std::rethrow_exception(pending_);
  const XML_Error error = XML_GetErrorCode(parser_.get());
  if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
  throw XmlFault(XML_ErrorString(error));
}

long ExpatTokenizer::line() const {
  return lines_before_ + static_cast<long>(XML_GetCurrentLineNumber(parser_.get()));
}

XmlTokenizer::XmlTokenizer(XmlEvents& events, Way way) : events_(events), scanner_(events) {
  if (way == Way::expat_only) expat_.emplace(events, "", 1);
}

void XmlTokenizer::feed(std::string_view bytes) {
  if (expat_) {
    if (!bytes.empty()) expat_->feed(bytes);
  } else if (!scanner_.feed(bytes)) {
    hand_over();
  }
}

void XmlTokenizer::hand_over() {
  expat_.emplace(events_, scanner_.context(), scanner_.line());
  if (const std::string_view rest = scanner_.rest(); !rest.empty()) expat_->feed(rest);
}

void XmlTokenizer::finish() {
  if (!expat_ && scanner_.complete()) return;
  if (!expat_) hand_over();
  expat_->feed({});
}

long XmlTokenizer::line() const { return expat_ ? expat_->line() : scanner_.line(); }

}  // namespace qto::embedded
