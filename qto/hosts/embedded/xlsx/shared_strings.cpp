#include "qto/hosts/embedded/xlsx/part_readers.hpp"

#include "qto/hosts/embedded/xlsx/string_item.hpp"
#include "qto/hosts/embedded/xlsx/xml_reader.hpp"

namespace qto::embedded {
namespace {

class SharedStringHandler final : public XmlHandler {
 public:
  SharedStringHandler(TextPool& texts, std::vector<TextId>& into, const Limits& limits)
      : texts_(texts), into_(into), limits_(limits), item_(limits.text_length) {}

  void on_start(Space space, std::string_view name, const Attributes&) override {
    if (space != Space::main) return;
    if (name == "si")
      item_.clear();
    else
      item_.start(name);
  }
  void on_end(Space space, std::string_view name) override {
    if (space != Space::main) return;
    if (name != "si") return item_.end(name);
    if (into_.size() == limits_.strings)
      throw XmlFault("too many shared strings (strings=" + std::to_string(limits_.strings) + ")",
                     OpenFailureKind::too_large);
    into_.push_back(texts_.intern(item_.finish()));
  }
  void on_text(std::string_view text) override { item_.text(text); }

 private:
  TextPool& texts_;
  std::vector<TextId>& into_;
  const Limits& limits_;
  StringItem item_;
};

}  // namespace

std::vector<TextId> read_shared_strings(Package& package, const Package::Part& part,
                                        TextPool& texts) {
  std::vector<TextId> strings;
  SharedStringHandler handler(texts, strings, package.limits());
  PartStream stream = package.open(part);
  read_xml(stream, handler);
  return strings;
}

}  // namespace qto::embedded
