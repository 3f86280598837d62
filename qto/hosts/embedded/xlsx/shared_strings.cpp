#include "qto/hosts/embedded/xlsx/part_readers.hpp"

#include "qto/hosts/embedded/xlsx/string_item.hpp"
#include "qto/hosts/embedded/xlsx/xml_reader.hpp"

namespace qto::embedded {
namespace {

class SharedStringHandler final : public XmlHandler {
 public:
  SharedStringHandler(TextPool& texts, std::vector<TextId>& into) : texts_(texts), into_(into) {}

  void on_start(Space space, std::string_view name, const Attributes&) override {
    if (space != Space::main) return;
    if (name == "si")
      item_.clear();
    else
      item_.start(name);
  }
  void on_end(Space space, std::string_view name) override {
    if (space != Space::main) return;
    if (name == "si")
      into_.push_back(texts_.intern(item_.finish()));
    else
      item_.end(name);
  }
  void on_text(std::string_view text) override { item_.text(text); }

 private:
  TextPool& texts_;
  std::vector<TextId>& into_;
  StringItem item_;
};

}  // namespace

std::vector<TextId> read_shared_strings(Package& package, const Package::Part& part,
                                        TextPool& texts) {
  std::vector<TextId> strings;
  SharedStringHandler handler(texts, strings);
  PartStream stream = package.open(part);
  read_xml(stream, handler);
  return strings;
}

}  // namespace qto::embedded
