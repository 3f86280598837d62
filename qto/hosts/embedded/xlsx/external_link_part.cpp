#include "qto/hosts/embedded/xlsx/part_readers.hpp"

#include <string>
#include <utility>

#include "qto/hosts/embedded/xlsx/external_target.hpp"
#include "qto/hosts/embedded/xlsx/relationships.hpp"
#include "qto/hosts/embedded/xlsx/xml_reader.hpp"
#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {
namespace {

class ExternalLinkHandler final : public XmlHandler {
 public:
  ExternalLinkHandler(ExternalBook& into, const Relationships& links, std::string_view base_folder,
                      const Limits& limits)
      : into_(into), links_(links), base_folder_(base_folder), limits_(limits) {}

  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    if (space != Space::main) return;
    if (name == "cell") return start_cell(attributes);
    if (name == "v") return start_value();
    if (name == "sheetName") return add_sheet(attributes);
    if (name == "sheetData") return start_sheet(attributes);
    if (name == "definedName") return add_name(attributes);
    if (name == "externalBook") return locate(attributes.relationship());
    if (name == "ddeLink") {
      into_.kind = ExternalBook::Kind::dde;
      into_.application = attributes.text("ddeService");
      into_.document = attributes.text("ddeTopic");
    } else if (name == "oleLink") {
      into_.kind = ExternalBook::Kind::ole;
      into_.application = attributes.text("progId");
      const Relationship* link = links_.by_id(attributes.relationship());
      if (link) into_.document = document_of(link->target);
    }
  }

  void on_end(Space space, std::string_view name) override {
    if (space != Space::main || name != "v" || !in_value_) return;
    in_value_ = false;
    if (sheet_ < into_.values.size() && at_.on_grid())
      into_.values[sheet_][ExternalBook::key(at_)] = value();
  }

  void on_text(std::string_view text) override {
    if (in_value_ && value_.size() < limits_.text_length * 8) value_.append(text);
  }

 private:
  void locate(std::string_view relationship) {
    const Relationship* link = links_.by_id(relationship);
    if (!link) return;
    // Types such as xlStartup stand for folders of the machine that wrote the file.
    const bool folder_unknown = link->type.starts_with("xl");
    const FileLocation at = locate_target(link->target, base_folder_);
    into_.name = at.name;
    if (!folder_unknown) into_.folder = at.folder;
  }

  std::string document_of(const std::string& target) const {
    const FileLocation at = locate_target(target, base_folder_);
    return at.folder + at.name;
  }

  void add_sheet(const Attributes& attributes) {
    std::string name(attributes.text("val"));
    decode_escapes(name);
    into_.sheets.push_back(std::move(name));
    into_.values.emplace_back();
    into_.lost.push_back(false);
  }

  void start_sheet(const Attributes& attributes) {
    sheet_ = static_cast<std::size_t>(attributes.whole_or("sheetId", -1));
    if (sheet_ < into_.lost.size()) into_.lost[sheet_] = attributes.flag("refreshError");
  }

  void add_name(const Attributes& attributes) {
    ExternalBook::Name name;
    name.name = attributes.text("name");
    decode_escapes(name.name);
    name.refers_to = attributes.text("refersTo");
    decode_escapes(name.refers_to);
    if (name.refers_to.starts_with('=')) name.refers_to.erase(0, 1);
    const auto sheet = static_cast<std::size_t>(attributes.whole_or("sheetId", -1));
    if (sheet < into_.sheets.size()) name.sheet = into_.sheets[sheet];
    into_.names.push_back(std::move(name));
  }

  void start_cell(const Attributes& attributes) {
    const auto written = parse_cell(attributes.text("r"));
    at_ = written ? written->pos : CellPos{0, 0};
    type_ = attributes.text("t");
  }

  void start_value() {
    in_value_ = true;
    value_.clear();
  }

  Variant value() {
    if (type_ == "b") return xml_boolean(value_);
    if (type_ == "e") return error_from(value_);
    if (type_ != "str" && type_ != "s")
      if (const auto number = real_number(value_)) return *number;
    decode_escapes(value_);
    cut_to_units(value_, limits_.text_length);
    return value_;
  }

  ExternalBook& into_;
  const Relationships& links_;
  std::string_view base_folder_;
  const Limits& limits_;
  std::size_t sheet_ = 0;
  CellPos at_{0, 0};
  std::string type_;
  std::string value_;
  bool in_value_ = false;
};

}  // namespace

ExternalBook read_external_link(Package& package, const Package::Part& part,
                                std::string_view base_folder) {
  ExternalBook book;
  const Relationships links(package, part.name);
  ExternalLinkHandler handler(book, links, base_folder, package.limits());
  PartStream stream = package.open(part);
  read_xml(stream, handler);
  return book;
}

}  // namespace qto::embedded
