#include "qto/hosts/embedded/xlsx/xml_tokenizer.hpp"

namespace qto::embedded {

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
